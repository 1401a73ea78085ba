// QeProfile.h - the profile library (libqeprof.so): one setting out of an INI file.
//
// The file is the one named by the environment variable QE_PROFILE, else $XDG_CONFIG_HOME/qe/qe.ini (when that
// variable is unset or empty: ~/.config/qe/qe.ini), else /etc/qe.ini; the first one that exists is the only one read.
#ifndef QEADRS_PLATFORM_QEPROFILE_H
#define QEADRS_PLATFORM_QEPROFILE_H

#ifdef __cplusplus
extern "C" {
#endif

// Copies the value of pszKey in section pszSection into pszBuffer (nSize bytes), cut to nSize - 1 bytes and always
// NUL-terminated; nothing is written when pszBuffer is null or nSize is not positive. Section and key are compared
// without regard to ASCII case; of several equal keys the first counts. A missing file, section or key gives
// pszDefault (null counts as ""). Returns the number of bytes written without the NUL.
int QeGetProfileString(char const* pszSection, char const* pszKey, char const* pszDefault, char* pszBuffer,
                       int nSize);

#ifdef __cplusplus
}
#endif

#endif
