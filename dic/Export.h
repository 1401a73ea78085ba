// Export.h - what the shared library shows to its callers, and what it keeps to itself. For C and C++.
#ifndef QEADRS_DIC_EXPORT_H
#define QEADRS_DIC_EXPORT_H

#if !defined(QEADRS_API)
#    define QEADRS_API __attribute__((visibility("default")))
#    define QEADRS_LOCAL __attribute__((visibility("hidden")))
#endif

#endif
