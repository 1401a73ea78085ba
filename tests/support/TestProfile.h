// CTestProfile - a folder of its own for one test, and a profile in it that names the folder of the dictionary.
//
//   CTestProfile profile;
//   profile.SetDicDir(profile.Folder());
//   profile.WriteDictionary(image.Bytes());
//   PstAdrOpen();
#ifndef QEADRS_TESTS_SUPPORT_TESTPROFILE_H
#define QEADRS_TESTS_SUPPORT_TESTPROFILE_H

#include <string>
#include <vector>

class CTestProfile {
  public:
    CTestProfile(); // an empty profile, in force from here on
    ~CTestProfile();
    CTestProfile(CTestProfile const&) = delete;
    CTestProfile& operator=(CTestProfile const&) = delete;

    std::string const& Folder() const { return m_strFolder; }
    std::string DictionaryPath() const { return m_strFolder + "/qeadrs.dic"; }

    void SetDicDir(std::string const& strDicDir) const;
    void WriteDictionary(std::vector<unsigned char> const& vByte) const;

  private:
    std::string m_strFolder;
};

#endif
