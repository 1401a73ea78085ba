// CBuildError - what the builder throws when it cannot go on; the text is a whole sentence for the user.
#ifndef QEADRS_BUILDER_ERROR_H
#define QEADRS_BUILDER_ERROR_H

#include <stdexcept>
#include <string>

namespace qe {

class CBuildError : public std::runtime_error {
  public:
    explicit CBuildError(std::string const& strMessage) : std::runtime_error(strMessage) {}
};

} // namespace qe

#endif
