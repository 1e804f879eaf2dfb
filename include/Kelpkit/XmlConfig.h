#pragma once

/// @file
/// Values in an XML configuration file, and the list of saved logins in it.

#include "Export.h"

#include <string>
#include <vector>

namespace KELPKIT
{

/// A saved login.
struct StUsrPwd {
    std::wstring name;     ///< The user's.
    std::wstring password; ///< Stored as it is given; whoever can read the file can read it.
};

/// Reads and writes single values of an XML file. Only the file's path is kept: each call loads the file, and each
/// write saves it at once, in its own encoding, so that a reader sees the old file or the new one, whole. Only where no
/// file can be made beside it is it written over, which a crash can interrupt (see IXMLTree::SaveFile). Objects may be
/// used by several threads, but two writers of one file can lose each other's changes: callers serialise writes.
///
/// A key is a path of element names with "/" between, from below the document element, as IXMLTree::GoToPath takes it:
/// "server/port" in `<config><server><port>80</port></server></config>`. A value is the element's text. A null key reads
/// as empty and writes nothing. Of several elements with one path, the first counts. A file that cannot be parsed behaves
/// as one that is missing.
class CXMLConfig
{
public:
    /// Keeps the path; the file is not touched.
    KELPKIT_API CXMLConfig(const std::wstring& file); // NOLINT(google-explicit-constructor): by contract
    /// Copies the path.
    KELPKIT_API CXMLConfig(const CXMLConfig& other);
    /// Takes over the path of the other object; no file is touched.
    KELPKIT_API CXMLConfig& operator=(const CXMLConfig& other);
    KELPKIT_API ~CXMLConfig();

    /// The element's text, character for character; empty if it cannot be read.
    KELPKIT_API std::wstring GetXmlString(const wchar_t* key);

    /// The integer that the element's text starts with: white space skipped, a sign, decimal digits; "12abc" gives 12,
    /// no digits give 0. Beyond int, its limit. 0 if the text cannot be read.
    KELPKIT_API int GetXmlInt(const wchar_t* key);

    /// Stores a text. The element is made anew as the last child of its parent, so it moves behind its siblings, and the
    /// attributes and children that it had are gone. Its parent must be there:
    ///
    ///     <c><a>1</a><b/></c>    WriteXmlString(L"2", L"a")    <c><b/><a>2</a></c>
    ///     <c/>                   WriteXmlString(L"2", L"a/b")  false: there is no <a>
    ///
    /// False, with the file as it was, if the file or the parent is missing, the last name of the key is no XML name or
    /// not to be had in the file's encoding, or the file cannot be saved. While another program has the file open, that
    /// takes almost a second.
    KELPKIT_API bool WriteXmlString(std::wstring value, const wchar_t* key);

    /// Stores an integer in decimal, such as "-5". Otherwise as WriteXmlString.
    KELPKIT_API bool WriteXmlInt(int value, const wchar_t* key);

    /// Appends the saved logins to users, which is not cleared first: one for each child element of "usersloginfo",
    /// whatever its name, with the texts of its children "name" and "password", or empty texts where they are missing.
    /// Appends nothing if the file cannot be read or has no such element.
    KELPKIT_API void GetShellXmlUsrs(std::vector<StUsrPwd>& users);

    /// Replaces the saved logins. Nothing is written, and nothing reported, if the file has no element "usersloginfo" or
    /// cannot be saved. Each login also gets the elements "pwdlength" with the constant text 6, whatever the password's
    /// length, and "logintime" without text; neither is ever read.
    ///
    ///     <user><name>ann</name><password>secret!</password><pwdlength>6</pwdlength><logintime/></user>
    KELPKIT_API void WriteShellXmlUsrs(const std::vector<StUsrPwd>& users);

private:
    KELPKIT_API bool GetXMLValue(const std::wstring& key, std::wstring& value);
    KELPKIT_API bool SetXMLValue(const std::wstring& key, const std::wstring& value);

    std::wstring m_strFilePath;
};

} // namespace KELPKIT
