// What several processes do to one log, and what a process takes from its environment and registry. The child
// processes are this same program, asked to run one test that does nothing otherwise.

#include <gmock/gmock.h>

#include <map>
#include <vector>

#include "libraries/fennic/log_writer.h"
#include "support/owners.h"
#include "tests/unit/temporary_folder.h"

namespace {

constexpr int kProcesses = 4;
constexpr int kLines = 1000;
/// The processes' lines of sixteen bytes need three files of this size, and no fourth.
constexpr std::uint64_t kSizeLimit = 24000;
constexpr const wchar_t* kChildVariable = L"ZEB_FENNIC_CHILD";

CString Variable(const wchar_t* name) {
    wchar_t value[MAX_PATH] = L"";
    GetEnvironmentVariableW(name, value, MAX_PATH);
    return {value};
}

CString ImagePath() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return {path};
}

/// Starts this program again to run only the child's part.
Handle StartChild(const CString& role) {
    SetEnvironmentVariableW(kChildVariable, role.c_str());
    CString command = L"\"" + ImagePath() + L"\" --gtest_filter=FennicChild.*";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &process));
    SetEnvironmentVariableW(kChildVariable, nullptr);
    const Handle thread(process.hThread);
    return Handle(process.hProcess);
}

/// Lets all processes of a test begin in the same moment. All of them name it by the same text.
class StartingLine {
  public:
    explicit StartingLine(const CString& name)
        : m_ready(CreateSemaphoreW(nullptr, 0, kProcesses, (name + L"-ready").c_str())),
          m_start(CreateEventW(nullptr, TRUE, FALSE, (name + L"-start").c_str())) {}

    /// In a process that takes part.
    void Wait() const {
        ReleaseSemaphore(m_ready.Get(), 1, nullptr);
        WaitForSingleObject(m_start.Get(), INFINITE);
    }
    /// In the process that started them.
    void Open() const {
        for (int i = 0; i < kProcesses; ++i) {
            WaitForSingleObject(m_ready.Get(), INFINITE);
        }
        SetEvent(m_start.Get());
    }

  private:
    Handle m_ready;
    Handle m_start;
};

/// The process' lines, each with its number: "p 0000000000123\n".
void WriteManyLines(wchar_t process, const StartingLine& line) {
    LogSettings settings = ReadLogSettings();
    settings.sizeLimit = kSizeLimit;
    LogWriter writer(settings);
    line.Wait();
    for (int i = 0; i < kLines; ++i) {
        writer.Write(L"M", 3, CString::Format(L"%c %013d\n", process, i).c_str());
    }
}

TEST(FennicChild, DoesItsPart) {
    const CString role = Variable(kChildVariable);
    if (role.empty()) {
        GTEST_SKIP() << "only in a process that another test started";
    }
    WriteManyLines(role.front(), StartingLine(role.substr(1)));
}

TEST(FennicProcesses, ShareAFileThatIsMovedAside) {
    const TemporaryFolder folder;
    const CString path = folder.File(L"shared.log");
    SetEnvironmentVariableW(L"FENNIC64_LOG", path.c_str());
    const CString race = CString::Format(L"ZebFennic%lu", GetCurrentProcessId());
    const StartingLine start(race);
    std::vector<Handle> children;
    children.reserve(kProcesses);
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(StartChild(CString(std::wstring(1, static_cast<wchar_t>(L'a' + i))) + race));
    }
    start.Open();
    SetEnvironmentVariableW(L"FENNIC64_LOG", nullptr);
    for (const Handle& child : children) {
        ASSERT_EQ(WaitForSingleObject(child.Get(), INFINITE), WAIT_OBJECT_0);
    }
    std::map<char, int> next;
    for (const wchar_t* name : {L"shared.log.2", L"shared.log.1", L"shared.log"}) {
        std::ifstream file(folder.File(name).c_str());
        ASSERT_TRUE(file) << name;
        for (std::string line; std::getline(file, line);) {
            ASSERT_EQ(line.size(), 15U) << line;
            EXPECT_EQ(std::stoi(line.substr(2)), next[line.front()]++) << line;
        }
    }
    EXPECT_THAT(next, testing::UnorderedElementsAre(testing::Pair('a', kLines), testing::Pair('b', kLines),
                                                    testing::Pair('c', kLines), testing::Pair('d', kLines)));
}

TEST(LogSettings, ComeFromTheEnvironment) {
    EXPECT_FALSE(ReadLogSettings().privateLines);
    SetEnvironmentVariableW(L"FENNIC64_LEVEL", L"3");
    EXPECT_FALSE(ReadLogSettings().privateLines);
    SetEnvironmentVariableW(L"FENNIC64_LEVEL", L"1");
    SetEnvironmentVariableW(L"FENNIC64_LOG", L"C:\\somewhere.log");
    const LogSettings settings = ReadLogSettings();
    SetEnvironmentVariableW(L"FENNIC64_LEVEL", nullptr);
    SetEnvironmentVariableW(L"FENNIC64_LOG", nullptr);
    EXPECT_TRUE(settings.privateLines);
    EXPECT_EQ(settings.namedFile, L"C:\\somewhere.log");
    EXPECT_EQ(settings.imageFolder, ImagePath().substr(0, ImagePath().rfind(L'\\') + 1));
    EXPECT_EQ(settings.sizeLimit, 10485760U);
}

TEST(LogSettings, ComeFromTheRegistry) {
    constexpr const wchar_t* kKey = L"SoftWare\\Lornwick\\LogFiles";
    const CString name = ImagePath();
    const auto privateLinesAt = [&](DWORD level) {
        EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str(), REG_DWORD, &level, sizeof(level)),
                  0);
        return ReadLogSettings().privateLines;
    };
    EXPECT_TRUE(privateLinesAt(1));
    EXPECT_FALSE(privateLinesAt(0));
    EXPECT_FALSE(privateLinesAt(4));
    EXPECT_EQ(RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str()), 0);
    EXPECT_FALSE(ReadLogSettings().privateLines);
}

}  // namespace
