#include "desktop/discovery_document.h"

#include "desktop/failure.h"
#include "support/owners.h"
#include "support/xml_parser.h"

namespace {

/// A document of nested "node" elements, taken apart.
class NodeDocument {
  public:
    NodeDocument(const CString& text, const wchar_t* rootPath) {
        if (m_parser.InitDocument()) {
            m_parser.LoadText(text.View());
            m_root = m_parser.SelectSingleNode(rootPath);
        }
        if (!m_root) {
            throw Failure(ExitCode::kReadFailed, L"the document of the agent is damaged");
        }
    }

    [[nodiscard]] IXMLDOMNode* Root() const { return m_root.Get(); }

    CString Text(IXMLDOMNode* node) { return m_parser.GetNodeText(node); }

    /// The value of an attribute; empty if there is none.
    CString Attribute(IXMLDOMNode* node, const wchar_t* name) {
        ComPtr<IXMLDOMNamedNodeMap> attributes;
        ComPtr<IXMLDOMNode> attribute;
        const Bstr key(SysAllocString(name));
        if (node->get_attributes(attributes.GetAddressOf()) == S_OK && attributes) {
            attributes->getNamedItem(key.Get(), attribute.GetAddressOf());
        }
        return Text(attribute.Get());
    }

    bool IsDefault(IXMLDOMNode* node) { return Attribute(node, L"default") == L"true"; }

  private:
    CXMLParser m_parser;
    ComPtr<IXMLDOMNode> m_root;
};

CString NameOf(IXMLDOMNode* node) {
    Bstr name;
    return node->get_nodeName(name.Put()) == S_OK ? CString(name.Get()) : CString();
}

/// Calls `take` with the name and the node of each child in order.
template<class Take>
void ForEachChild(IXMLDOMNode* parent, Take take) {
    ComPtr<IXMLDOMNode> child;
    parent->get_firstChild(child.GetAddressOf());
    while (child) {
        take(NameOf(child.Get()), child.Get());
        ComPtr<IXMLDOMNode> next;
        child->get_nextSibling(next.GetAddressOf());
        child = std::move(next);
    }
}

void TakeFolder(NodeDocument& document, IXMLDOMNode* node, std::size_t depth,
                std::vector<FolderEntry>& folders) {
    const std::size_t index = folders.size();
    folders.push_back({depth, L"", document.Attribute(node, L"class"), L"", document.IsDefault(node)});
    ForEachChild(node, [&](const CString& name, IXMLDOMNode* child) {
        if (name == L"fname") {
            folders[index].name = document.Text(child);
        } else if (name == L"id") {
            folders[index].id = document.Text(child);
        } else if (name == L"node") {
            TakeFolder(document, child, depth + 1, folders);
        }
    });
}

}  // namespace

std::vector<ProfileEntry> ParseProfiles(const CString& text) {
    NodeDocument document(text, L"/profiles");
    std::vector<ProfileEntry> profiles;
    ForEachChild(document.Root(), [&](const CString& name, IXMLDOMNode* node) {
        if (name == L"node") {
            // The name is all the text that a profile has.
            profiles.push_back({document.Text(node), document.IsDefault(node)});
        }
    });
    return profiles;
}

std::vector<FolderEntry> ParseFolders(const CString& text) {
    NodeDocument document(text, L"/folders");
    std::vector<FolderEntry> folders;
    ForEachChild(document.Root(), [&](const CString& name, IXMLDOMNode* node) {
        if (name == L"node") {
            TakeFolder(document, node, 0, folders);
        }
    });
    return folders;
}
