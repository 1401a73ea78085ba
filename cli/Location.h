// Location.h - which dictionary file a command is to open: the one of --dic, else the one that the profile names.
#ifndef QEADRS_CLI_LOCATION_H
#define QEADRS_CLI_LOCATION_H

#include <optional>
#include <string>

namespace qe {

// The name that the library appends to the folder it is given.
constexpr char DICTIONARY_NAME[] = "qeadrs.dic";

// How every message about a missing dictionary ends.
constexpr char WAY_OUT[] =
    "Way out: run ./quickstart.sh in the source folder, or compile a dictionary with `qeadrs-dic build` and name it\n"
    "by --dic FILE, or its folder by DicDir in section [General] of ~/.config/qe/qe.ini.";

// The file behind --dic: strDic itself, or qeadrs.dic in it when it is a folder.
std::string FileOfOption(std::string const& strDic);

// The file that PstAdrOpen is about to open: qeadrs.dic in the folder that the profile names. Throws CFailure when
// the profile cannot be asked, or names a folder too long for the library.
std::string FileOfProfile();

// Where the profile is looked for, in order, each place with whether it is there; for messages.
std::string DescribeProfile();

} // namespace qe

#endif
