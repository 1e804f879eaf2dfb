#pragma once

/// @file
/// Files and folders: questions about a path; folder trees made, copied and deleted; folders for a scope.
///
/// The backslash is the only separator: "/" is a character like any other. Paths go to the system as they are given,
/// with nothing added, folded or resolved; paths that begin with `\\?\` included. A path ends at its first zero
/// character wherever the system reads it. No function keeps state or a handle; each may be called from any thread. An
/// object may be used by one thread at a time. None throws for a bad path. Trees may be as deep as paths allow; the
/// stack does not grow with their depth.

#include "Export.h"

#include <set>
#include <string>

namespace KELPKIT
{

/// Whether the file can be opened for reading, beside others that read or write it. False for a folder, a missing
/// file, one that access rights deny, and one that another process has open without sharing.
KELPKIT_API bool CheckFileExis(const std::wstring& path);

/// Whether the path names a folder.
///
///     "C:\Windows"     true
///     "C:\Windows\"    false: a path that ends in a backslash names nothing here
///     "C:\Win*"        true if the first match is a folder
///     ""               false
KELPKIT_API bool CheckFolderExis(const std::wstring& path);

/// The folder part of a path: all up to its last backslash, which is kept. A path without one is returned as it is.
///
///     "C:\a\b.txt"     "C:\a\"
///     "C:\a\"          "C:\a\"
///     "name.txt"       "name.txt"
///     "C:/a/b.txt"     "C:/a/b.txt"
///     ""               ""
KELPKIT_API std::wstring GetFileDir(const std::wstring& path);

/// What stands behind the last dot of the whole path, in its case and without the dot; empty if there is no dot.
///
///     "archive.tar.gz" "gz"
///     "a."             ""
///     ".hidden"        "hidden"
///     "C:\x.y\file"    "y\file": the dot of a folder counts, too
///     "noext"          ""
KELPKIT_API std::wstring GetFileExtion(const std::wstring& path);

/// The size of the file in bytes, or 0 where it cannot be opened. Only the low 32 bits are kept: a file of 3 GiB gives
/// -1073741824, one of 4 GiB gives 0.
KELPKIT_API int GetFileSize(const std::wstring& path);

/// Whether the file can be used: opened for reading, as CheckFileExis does. If so, msg is empty. If not, it holds the
/// reason, one of three Chinese texts, which the guide quotes:
/// - the path is empty;
/// - the file does not exist: said of every file that cannot be opened, also of one that is denied or held by another
///   process;
/// - the file is in use: it can be opened but not read.
///
/// path may be msg itself.
KELPKIT_API bool CheckFileValid(const std::wstring& path, std::wstring& msg);

/// Makes a folder and the parents that it lacks. The result does not tell whether the folder exists afterwards
/// (CheckFolderExis does):
///
///     true     the folder existed, or its creation failed and its parents were then made
///     false    the folder was created at the first attempt, its parent being there; or the path has 3 characters or
///              fewer; or it could not be created and has no backslash
///
/// A path that ends in a backslash names a folder of its own, which no existence test finds.
KELPKIT_API bool MakeDirectory(const std::wstring& path);

/// Deletes a folder with everything in it, read-only, hidden and system files included. Returns whether the folder
/// itself is gone by this call's doing: false where it is missing, where something in it could not be deleted, and for
/// paths of 3 characters or fewer, such as `C:\`, which are refused untouched.
///
/// Whatever the file system calls a folder is entered: a junction or a link to a folder is followed, and what it leads
/// to is emptied. The path is taken at its word: `C:\\` has four characters and names the whole drive.
///
/// One backslash is always added, also behind one that is there. Windows takes doubled ones, but not in paths that begin
/// with `\\?\`: below such a path, folders in the folder are not deleted.
KELPKIT_API bool DeleteDirectory(const std::wstring& path);

/// Copies folder trees, leaving out what was excluded, and deletes them.
///
/// Exclusions are lists with "$" between the entries, as in "pdb$tmp". An empty last entry is none; blanks belong to an
/// entry. Entries of several calls add up, for the life of the object. Case does not matter, as far as the global locale
/// of C++ has lower case for a letter; in the default one, that is for A to Z.
class CFileFolderManageTool
{
public:
    /// Excludes nothing.
    KELPKIT_API CFileFolderManageTool();
    /// Excludes what other does.
    KELPKIT_API CFileFolderManageTool(const CFileFolderManageTool& other);
    /// From now on excludes what other does, and nothing else.
    KELPKIT_API CFileFolderManageTool& operator=(const CFileFolderManageTool& other);
    KELPKIT_API ~CFileFolderManageTool();

    /// Excludes files and folders, a folder with all that is in it, by their paths. A path must be written as CopyFolder
    /// makes it: the source as it is given there, a backslash, and the names down to the entry. `C:\Src\Temp` excludes Temp
    /// from a copy of `C:\Src`, but not from one of `C:\Src\`, where its path is `C:\Src\\Temp`.
    KELPKIT_API void SetNoNeedFilePath(const std::wstring& paths);

    /// Excludes files by what stands behind the last dot of their path; where it has none, by the whole path. The dot is
    /// not written: ".tmp" excludes nothing.
    KELPKIT_API void SetNoNeedFileExName(const std::wstring& exts);

    /// Copies what is in the folder src to the folder dst. dst is deleted first, with everything in it that can be
    /// (ClearFolder), and made anew; its parent must be there. Both without a trailing backslash. Returns false where
    /// either is empty, or src itself is excluded, which leaves dst as it is; else true, even if src is missing (dst is
    /// then an empty folder) or single files cannot be copied.
    ///
    /// Links to folders and junctions are followed: what they lead to is copied. A dst inside src is not copied into
    /// itself, whatever names the two go by. A src inside dst is deleted with it before it could be copied. Where
    /// both are the same folder, it is emptied.
    KELPKIT_API bool CopyFolder(const std::wstring& src, const std::wstring& dst);

    /// Deletes a folder with everything in it, whatever is excluded. Returns false where folder is empty, else true, even
    /// if it is missing or something stays: read-only files do, unlike with DeleteDirectory, and so does what is held
    /// open, with the folders above. Links to folders and junctions are followed: what they lead to is emptied.
    ///
    /// No other path is refused: "." empties the current folder, and `C:` and `C:\` empty the whole drive. A relative
    /// path means the folder that is current at the call.
    KELPKIT_API bool ClearFolder(const std::wstring& folder);

private:
    // Exported with the rest of the class.
    KELPKIT_API bool IsNoNeedFile(const std::wstring& path);
    KELPKIT_API bool IsNoNeedFileExName(const std::wstring& path);
    KELPKIT_API std::wstring GetFileType(const std::wstring& path);
    KELPKIT_API int CopyNeedFile(const std::wstring& src, const std::wstring& dst);

    std::set<std::wstring> m_setNoNeedFilePath;
    std::set<std::wstring> m_setNoNeedFileExName;
};

/// A folder for a scope: made at its start, deleted at its end with everything in it, as by ClearFolder. A folder that
/// is there already goes the same way, so the name must be one that nobody else uses:
///
///     const std::wstring temp = GetTempPathW();
///     if (temp.empty())
///         return false; // without it, the path would be relative
///     const CAutoCreateFolder folder(temp + L"MyApplication-" + GenerateUUID());
///
/// A relative path is looked up each time: the destructor deletes the folder of that name in the folder that is current
/// then, which may not be the one that was current at the start.
class CAutoCreateFolder
{
public:
    /// Makes the folder, if its parent is there. A folder that is there already is taken over, with what is in it.
    /// Nothing tells whether it worked; CheckFolderExis does.
    KELPKIT_API CAutoCreateFolder(const std::wstring& path); // NOLINT(google-explicit-constructor): by contract

    /// Copies the path only. Each copy deletes the folder at its end; those after the first find nothing.
    KELPKIT_API CAutoCreateFolder(const CAutoCreateFolder& other);

    /// Takes over the path only: the folder that this object stood for is not deleted, nor is any made.
    KELPKIT_API CAutoCreateFolder& operator=(const CAutoCreateFolder& other);

    /// Deletes the folder, whoever made it. Read-only files stay, and so do files held open, with the folders above; and
    /// what is left where memory runs out, which is not told.
    KELPKIT_API ~CAutoCreateFolder();

private:
    std::wstring m_strFolderPath;
};

} // namespace KELPKIT
