#include "desktop/discovery_commands.h"

#include "desktop/agent_document.h"
#include "desktop/agent_process.h"
#include "desktop/agent_settings.h"
#include "desktop/callback_service.h"
#include "desktop/discovery_document.h"
#include "desktop/output_stream.h"
#include "desktop/single_instance.h"

extern "C" {
#include "command.h"
}

namespace {

constexpr AgentDocument kProfiles = {L"list of profiles", L"Profile.xml", GetAppProfile};
constexpr AgentDocument kFolders = {L"list of folders", L"Outlook.xml", GetAppFolder};

/// The folder that the agent writes its documents to. Throws if its settings name none: then the documents
/// would reach nobody.
CString RequireDocumentFolder(const Arguments& arguments) {
    const CString settings = SettingsPath(AgentProgram(arguments.agent));
    CString folder = DocumentFolder(settings);
    if (folder.empty()) {
        throw Failure(ExitCode::kNotSetUp, L"the agent has no folder for its lists, because " + settings +
                                               L" is missing or has no XMLPath; \"zebdesk setup\" helps");
    }
    return folder;
}

void PrintDocument(const CString& text) {
    PrintOutput((text.ends_with(L'\n') ? text : CString(text + L"\n")).View());
}

std::size_t Columns() {
    return OutputStream(STD_OUTPUT_HANDLE).Columns();
}

}  // namespace

void PrintProfiles(const Arguments& arguments) {
    const SingleInstance instance;
    const CString folder = RequireDocumentFolder(arguments);
    const AgentConnection agent;
    EnsureAgent(agent, arguments.agent);
    const CString text = FetchDocument(agent, kProfiles, folder);
    if (arguments.Has(kOptionXml)) {
        PrintDocument(text);
    } else {
        PrintOutput(ProfileListText(ParseProfiles(text), Columns()).View());
    }
}

void PrintFolders(const Arguments& arguments) {
    const SingleInstance instance;
    const CString folder = RequireDocumentFolder(arguments);
    const CallbackService callbacks;
    const AgentConnection agent;
    EnsureAgent(agent, arguments.agent);
    const AgentSession session(agent, arguments.profile);
    const CString text = FetchDocument(agent, kFolders, folder);
    if (arguments.Has(kOptionXml)) {
        PrintDocument(text);
    } else {
        PrintOutput(FolderListText(ParseFolders(text), Columns()).View());
    }
}
