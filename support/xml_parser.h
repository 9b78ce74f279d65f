#pragma once

#include "support/owners.h"
#include "support/text.h"

// Behind the platform's base headers, on which it depends.
#include <msxml2.h>

/// Keeps COM's apartment on the calling thread while an operation makes one document after the other: the
/// uninitialisations that its documents owe are counted and follow when the hold ends. Making and destroying
/// the apartment for each document would cost more than the document. A hold is for one operation and not
/// for the life of a thread, because an apartment whose thread lies idle can block others that call into it.
class ComApartmentHold {
  public:
    ComApartmentHold() noexcept;
    ComApartmentHold(const ComApartmentHold&) = delete;
    ComApartmentHold& operator=(const ComApartmentHold&) = delete;
    ~ComApartmentHold();

    /// Uninitialises COM once on this thread: when its outermost hold ends, or at once without one.
    static void Uninitialize() noexcept;
};

/// COM initialised once more on the calling thread, for one operation.
class ComInitialization {
  public:
    ComInitialization() noexcept;
    ComInitialization(const ComInitialization&) = delete;
    ComInitialization& operator=(const ComInitialization&) = delete;
    ~ComInitialization();
};

/// One XML document of MSXML, used in one of two ways by one operation on one thread.
/// Building: InitDocument, CreateHeader, CreateRootElement, then CreateChildElement and SetAttribute, then
/// GetDocumentText or SaveToFile, then ReleaseDocument. Reading: InitDocument, LoadText, then
/// SelectSingleNode and GetNodeText, then ReleaseDocument.
///
/// Nothing is logged: an operation reports by null or false, and its caller chooses the words. Characters
/// that XML 1.0 cannot carry are left out of element texts and attribute values.
///
/// InitDocument initialises COM on the thread once. ReleaseDocument and the destructor each uninitialise it
/// once, so COM is uninitialised once more than it was initialised where both have run. Callers rely on that
/// balance, at the latest when their operation ends (see ComApartmentHold).
class CXMLParser {
  public:
    CXMLParser() = default;
    CXMLParser(const CXMLParser&) = delete;
    CXMLParser& operator=(const CXMLParser&) = delete;
    virtual ~CXMLParser();

    /// Makes an empty document that loads synchronously, without validation and without external entities.
    bool InitDocument();

    /// Parses a document. A text that is not well-formed, or that brings a document type declaration, leaves
    /// the root null and is not reported: every later selection finds nothing.
    void LoadText(WideView text);

    /// Puts the declaration into the document; true if it is there.
    bool CreateHeader();

    /// Makes the root element. The reference to an earlier root is let go first. Null for a null name and on
    /// failure.
    ComPtr<IXMLDOMElement> CreateRootElement(const wchar_t* name);

    /// Makes an element behind an indentation of `depth` tabs on a new line. A null text leaves it without
    /// content; a null parent means the root. With `append` cleared the element is returned unattached. Null
    /// for a null name and on failure.
    ///
    /// With the empty name no element comes into being, so the indentation alone is written: that is how a
    /// parent's closing tag gets a line of its own, at the parent's depth.
    ComPtr<IXMLDOMElement> CreateChildElement(const wchar_t* name, const wchar_t* text, IXMLDOMNode* parent,
                                              bool append, int depth);

    /// Appends a line feed and `depth` tabs to the parent; nothing for a negative depth or a null parent.
    void AppendIndent(int depth, IXMLDOMNode* parent);

    /// Sets an attribute of an element; false for a null value, for a node that is null or no element, and on
    /// failure.
    bool SetAttribute(const wchar_t* name, const wchar_t* value, IXMLDOMNode* node);

    /// The first node of an absolute path of element names, or null. A path is a constant of the program,
    /// never text from outside: MSXML is not safe from every path.
    ComPtr<IXMLDOMNode> SelectSingleNode(const wchar_t* path);

    /// The text of a node and its descendants, trimmed as MSXML does by default; empty for null.
    CString GetNodeText(IXMLDOMNode* node);

    /// Replaces the text of a node; false for null and on failure.
    bool SetNodeText(const wchar_t* text, IXMLDOMNode* node);

    /// The text of the whole document; empty without a document or on failure.
    CString GetDocumentText();

    /// Writes the document to a file in the encoding of its declaration; true if it is saved.
    bool SaveToFile(const wchar_t* path);

    /// Lets go of the document and its root and uninitialises COM once.
    void ReleaseDocument();

  private:
    ComPtr<IXMLDOMElement> CreateElement(const wchar_t* name);
    void AppendHeader();

    ComPtr<IXMLDOMDocument> m_pXMLDoc;
    ComPtr<IXMLDOMElement> m_pRootNode;
};
