#pragma once

/// @file
/// XMLParser.dll: an XML file (XML 1.0) as a tree with a current element, edited in place and saved whole.

#include "Export.h"
#include "Mfc.h"

#include <memory>

/// Marks what XMLParser.dll exports.
#if !defined(_WIN32)
#define XMLPARSER_API
#elif defined(XMLPARSER_BUILD)
#define XMLPARSER_API __declspec(dllexport)
#else
#define XMLPARSER_API __declspec(dllimport)
#endif

/// An XML file as a tree. One element is current; the operations work on it and move it. Names and texts are UTF-16.
/// A move that fails leaves the current element as it is. An object is for one thread at a time.
///
/// Whatever is not edited stays as it is: other elements, attributes, comments, processing instructions, the
/// declaration, the document type, CDATA sections, entity references, the encoding and its byte order mark. Only the
/// spelling inside of tags is made uniform (`<a></a>` becomes `<a/>`, `'x'` becomes `"x"`), and where elements stand on lines of
/// their own, new ones get a line and removed ones take theirs along; xml:space="preserve" keeps that away.
class IXMLTree
{
public:
    /// Loads a file and makes its document element current. The encoding is UTF-8, UTF-16 of either byte order, or what
    /// the declaration names and Windows can convert (GB2312, GBK, GB18030, Big5, ...), by any name that Windows or the
    /// Encoding Standard (WHATWG) has for it; "ascii" and "latin1" are US-ASCII and ISO 8859-1. False, with an empty
    /// tree, if the file cannot be read, is 2 GiB or larger, cannot be parsed, holds bytes that its encoding does not
    /// know, or names an unknown encoding, or UTF-16 where it is not. Errors in UTF-8 are no failure: they read as
    /// U+FFFD and are saved as they were. Nor is everything that XML forbids, such as a bare "&" or an attribute given
    /// twice.
    virtual bool LoadFile(const CString& path) = 0;

    /// Saves the tree in the encoding in which it was loaded (else UTF-8), in one step: at any moment, even after a
    /// crash, the file is the old one or the new one, complete. The new file is written beside the old one, flushed to
    /// the disk, and put in the place of the old one with that one's attributes and access rights. Where somebody holds
    /// the old file open, it tries again for less than a second. Several threads and processes may save one file: the
    /// last one wins. The name beside ends in the numbers of process and thread, such as "config.xml.1234-5678.saving";
    /// files of that name whose process is gone are deleted.
    ///
    /// Where no file can be made beside one that is there (the folder forbids it, or that name would be too long), the
    /// file is written over. Nobody else can open it meanwhile: a load fails. If a step fails, the old content is
    /// written back. But if that fails, too, or the program is killed or the power fails meanwhile, the file can be
    /// left cut or mixed, so that it does not load.
    ///
    /// False if the tree is empty, the file is read-only, or any step fails; the old file is then as it was and nothing
    /// is left beside it.
    virtual bool SaveFile(const CString& path) = 0;

    /// Adds a child element behind the others and makes it current. Its text reads back as it is, character for
    /// character; a character that the encoding cannot hold is written as a character reference. In an empty tree it
    /// becomes the document element. False if the name is no XML name, the encoding cannot hold it, or memory runs out.
    virtual bool AddChild(const CString& name, const CString& text) = 0;

    /// Removes the current element with all that is in it; its parent becomes current.
    virtual void RemoveCurrent() = 0;

    /// Removes all child elements of the current element, and the white space between them.
    virtual void RemoveAllChildren() = 0;

    /// Makes the child element with the zero-based index current, whatever its name.
    virtual void GoToChildAt(int index) = 0;

    /// Makes the child element with the name current; with index n, the one behind n others of that name. A negative
    /// index counts as 0.
    virtual bool GoToChild(const CString& name, int index) = 0;

    /// Makes the element at the path current: names with "/" between, from the document element downward, the first of
    /// each name. Where the first name is no child of the document element but is its own name, it stands for it.
    /// Leading "/" count for nothing.
    ///
    ///     <config><server><host>h</host></server></config>
    ///     server/host, /server/host, config/server/host    <host>
    ///     config, the empty path                           <config>
    ///     host, server/, server//host                      false
    virtual bool GoToPath(const CString& path) = 0;

    /// The number of child elements of the current element.
    virtual void GetChildCount(int& count) = 0;

    /// The current element's own text, without that of its children: character references and the five entities of XML
    /// resolved, other entity references as they stand, line ends in the file as `\n`. Empty where there is none.
    /// False, with an empty text, if the tree is empty.
    virtual bool GetText(CString& text) = 0;

    /// Makes the parent current; the document element stays.
    virtual void GoToParent() = 0;

    virtual ~IXMLTree() = default;

protected:
    /// Trees are made by CXMLTreeCreator, and handled by pointer.
    IXMLTree() = default;
    /// For derived classes only.
    IXMLTree(const IXMLTree&) = default;
    /// For derived classes only.
    IXMLTree& operator=(const IXMLTree&) = default;
};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#endif
/// The pointer that owns a tree. It is deprecated, but it is the interface.
using IXMLTreePtr = std::auto_ptr<IXMLTree>; // NOLINT(modernize-replace-auto-ptr): by contract
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// Makes trees. The class has no data: a copy is just another one. Its copy operations come from Kelpkit.dll.
class CXMLTreeCreator
{
public:
    /// Does nothing.
    CXMLTreeCreator() = default;
    /// Copies nothing.
    KELPKIT_API CXMLTreeCreator(const CXMLTreeCreator&);
    /// Assigns nothing.
    KELPKIT_API CXMLTreeCreator& operator=(const CXMLTreeCreator&);
    XMLPARSER_API virtual ~CXMLTreeCreator();

    /// Hands over a new, empty tree; the one that tree held before is deleted. True; throws std::bad_alloc when memory
    /// runs out.
    XMLPARSER_API static bool Allocate(IXMLTreePtr& tree);
};
