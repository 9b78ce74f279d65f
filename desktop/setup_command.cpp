#include "desktop/setup_command.h"

#include <windows.h>

#include "desktop/agent_process.h"
#include "desktop/agent_settings.h"
#include "desktop/failure.h"
#include "desktop/output_stream.h"

void SetUpAgent(const Arguments& arguments) {
    const CString agent = AgentProgram(arguments.agent);
    if (GetFileAttributesW(agent.c_str()) == INVALID_FILE_ATTRIBUTES) {
        throw Failure(ExitCode::kAgentUnreachable, L"there is no agent " + agent);
    }
    const CString settings = SettingsPath(agent);
    const bool written = WriteDefaultSettings(settings);
    const CString folder = DocumentFolder(settings);
    if (folder.empty()) {
        throw Failure(ExitCode::kNotSetUp, settings +
                                               L" is there and was left as it is, but \"profiles\" and "
                                               L"\"folders\" need a line such as XMLPath=ZebAgent below "
                                               L"[Outlook] in it");
    }
    CString text = settings + (written ? L" was written.\n" : L" is there and was left as it is.\n");
    text += L"Lists of profiles and folders go to " + folder + L"\n";
    if (written && AgentIsRunning()) {
        text += L"The agent that is running reads it at its next start; \"zebdesk shutdown\" ends it.\n";
    }
    PrintOutput(text.View());
}
