#pragma once

#include "desktop/agent_connection.h"
#include "support/text.h"

/// A document that the agent writes to a file and does not send: the profiles, or the folders.
struct AgentDocument {
    /// What it is, for messages.
    const wchar_t* what;
    /// The name of its file in the folder of the documents.
    const wchar_t* file;
    /// The remote procedure that writes it. The first parameter carries nothing.
    void (*write)(wchar_t* nothing, long* status);
};

/// Has the agent write a document into `folder`, and returns its text. What an earlier call wrote is removed
/// before. Throws a Failure if the document is not there afterwards.
CString FetchDocument(const AgentConnection& agent, const AgentDocument& document, const CString& folder);
