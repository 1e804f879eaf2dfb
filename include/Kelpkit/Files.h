#pragma once

/// Files and folders: questions about a path, and folder trees made and deleted.
///
/// The backslash is the only separator: "/" is a character like any other. Paths go to the system as they are given,
/// with nothing added, folded or resolved; paths that begin with "\\?\" included. A path ends at its first zero
/// character wherever the system reads it. No function keeps state or a handle; each may be called from any thread.
/// None throws for a bad path.

#include "Export.h"

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

/// Whether the file can be used: opened for reading, as CheckFileExis does. If not, msg holds the reason: "文件名为空"
/// for an empty path, "文件不存在!" where the file cannot be opened (it may exist, and be denied or held by another
/// process), "文件正在使用!" where it can be opened but not read. If so, msg is empty. path may be msg itself.
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
/// paths of 3 characters or fewer, such as "C:\", which are refused untouched.
///
/// Whatever the file system calls a folder is entered: a junction or a link to a folder is followed, and what it leads
/// to is emptied. The path is taken at its word: "C:\\" has four characters and names the whole drive.
///
/// One backslash is always added, also behind one that is there. Windows takes doubled ones, but not in paths that begin
/// with "\\?\": below such a path, folders in the folder are not deleted.
KELPKIT_API bool DeleteDirectory(const std::wstring& path);

} // namespace KELPKIT
