// The procedures of the command interface, most before any logon: the bytes of each request and of its
// answer. The bytes follow from the parameters by the rules of NDR 2.0 (C706, chapter 14), not from what the
// agent's stubs happen to do.

#include <gmock/gmock.h>

#include "tests/wire/agent_process.h"
#include "tests/wire/callback_endpoint.h"
#include "tests/wire/command_connection.h"

namespace {

using testing::HasSubstr;

Bytes Success() {
    return Hex("00 00 00 00");
}
Bytes Failure() {
    return Hex("01 00 00 00");
}
Bytes Nothing() {
    return {};
}
/// A text that is ignored, and the name of a map file.
Bytes ArgumentsOfARead() {
    return Hex(
        "02 00 00 00  00 00 00 00  02 00 00 00  71 00 00 00"
        "04 00 00 00  00 00 00 00  04 00 00 00  6d 00 61 00 70 00 00 00");
}

class Commands : public testing::Test {
  protected:
    /// A call that must be answered; gives the stub of the answer.
    Bytes Answer(std::uint16_t procedure, const Bytes& stub = {}) {
        const CallPdu answer = m_connection.Call(procedure, stub);
        EXPECT_EQ(answer.type, PduType::kResponse)
            << "procedure " << procedure << ", status " << answer.faultStatus;
        return answer.stub;
    }
    /// A call that must not be answered.
    void ExpectFault(std::uint16_t procedure, const Bytes& stub) {
        const CallPdu answer = m_connection.Call(procedure, stub);
        EXPECT_EQ(answer.type, PduType::kFault) << ToHex(answer.stub);
        EXPECT_NE(answer.faultStatus, 0U);
        EXPECT_TRUE(m_agent.IsRunning());
        CommandConnection another;
        EXPECT_EQ(another.Call(9, Hex("78 00")).stub, Success());
    }

    AgentProcess m_agent;
    CommandConnection m_connection;
};

TEST_F(Commands, TheInterfaceIsServedInNdr) {
    EXPECT_TRUE(m_connection.Bound().accepted);
    EXPECT_EQ(m_connection.Bound().transferSyntax, NdrSyntax());
}

TEST_F(Commands, AnotherInterfaceIsRefused) {
    Bytes syntax = CommandSyntax();
    syntax[15] ^= 1;
    EXPECT_FALSE(CommandConnection(syntax).Bound().accepted);
    EXPECT_FALSE(CommandConnection(CallbackSyntax()).Bound().accepted);
}

TEST_F(Commands, AnotherVersionIsRefused) {
    Bytes syntax = CommandSyntax();
    syntax[16] = 2;
    EXPECT_FALSE(CommandConnection(syntax).Bound().accepted);
}

TEST_F(Commands, StopTakesAndGivesNothing) {
    EXPECT_EQ(Answer(1), Nothing());
    EXPECT_THAT(m_agent.Log(), HasSubstr("CMAPIObject::Stop - Begin\r\nCMAPIObject::Stop - Finish\r\n"));
}

TEST_F(Commands, LogOnTakesAText) {
    EXPECT_EQ(Answer(2, Hex("04 00 00 00  00 00 00 00  04 00 00 00  61 00 62 00 63 00 00 00")), Failure());
    EXPECT_THAT(m_agent.Log(), HasSubstr("ProfileName(abc)\r\n"));
}

TEST_F(Commands, LogOffTakesAndGivesNothing) {
    EXPECT_EQ(Answer(3), Nothing());
    EXPECT_THAT(m_agent.Log(), HasSubstr("CMAPIObject::MAPILogOff : Finish\r\n"));
}

TEST_F(Commands, GetAppProfileTakesATextAndGivesAStatus) {
    EXPECT_EQ(Answer(4, ByteWriter().String(u"").Written()).size(), 4U);
}

TEST_F(Commands, GetContactCountBeforeLogonIsNone) {
    EXPECT_EQ(Answer(5), Hex("00 00 00 00  00 00 00 00"));
}

TEST_F(Commands, GetAppFolderTakesOneCharacter) {
    EXPECT_EQ(Answer(7, Hex("78 00")), Failure());
}

TEST_F(Commands, GetContactFolderEchoesItsArray) {
    ByteWriter array;
    for (std::uint16_t i = 0; i < 3000; ++i) {
        array.U16(static_cast<std::uint16_t>(0x2100 + i * 7));
    }
    EXPECT_EQ(Answer(8, array.Written()), ByteWriter().Raw(array.Written()).U32(1).Written());
}

TEST_F(Commands, GetContactFolderEchoesTerminatorsToo) {
    EXPECT_EQ(Answer(8, Bytes(6000)), ByteWriter().Raw(Bytes(6000)).U32(1).Written());
}

TEST_F(Commands, GetCalendarFolderAlwaysSucceeds) {
    EXPECT_EQ(Answer(9, Hex("78 00")), Success());
}

TEST_F(Commands, Reserved10AnswersWithoutDecidingAStatus) {
    EXPECT_EQ(Answer(10, Hex("78 00")).size(), 4U);
}

TEST_F(Commands, FolderSelectionsFailBeforeLogon) {
    const Bytes selection = ByteWriter().String(u"<id>00AB</id>").Written();
    EXPECT_EQ(Answer(11, selection), Failure());
    EXPECT_EQ(Answer(12, ByteWriter().String(u"<id><event>00AB</event></id>").Written()), Failure());
    EXPECT_EQ(Answer(11, ByteWriter().String(u"").Written()), Failure());
    EXPECT_EQ(Answer(12, ByteWriter().String(u"").Written()), Failure());
}

TEST_F(Commands, ReadContactsFailsBeforeLogon) {
    EXPECT_EQ(Answer(15, ArgumentsOfARead()), Failure());
}

TEST_F(Commands, ReadCalendarsFailsBeforeLogon) {
    EXPECT_EQ(Answer(16, ArgumentsOfARead()), Failure());
}

TEST_F(Commands, GetCalendarCountIsZeroWithoutAppointmentsAndAlwaysSucceeds) {
    EXPECT_EQ(Answer(6), Hex("00 00 00 00  00 00 00 00"));
    ASSERT_EQ(Answer(2, ByteWriter().String(u"").Written()), Success());
    EXPECT_EQ(Answer(6), Hex("00 00 00 00  00 00 00 00"));
}

/// The answer of a write that had nothing to do: two texts, for which the arrays of 400 and 40 characters are
/// announced, and a status at the next multiple of four.
void ExpectAnswerOfAWrite(const Bytes& answer) {
    ByteReader reader(answer);
    const WireString id = ReadString(reader);
    EXPECT_EQ(id.maximum, 400U);
    EXPECT_EQ(id.offset, 0U);
    EXPECT_EQ(id.units, std::u16string(1, u'\0'));
    const WireString time = ReadString(reader);
    EXPECT_EQ(time.maximum, 40U);
    EXPECT_EQ(time.offset, 0U);
    ASSERT_FALSE(time.units.empty());
    EXPECT_LE(time.units.size(), 40U);
    EXPECT_EQ(time.units.find(u'\0'), time.units.size() - 1);
    reader.Align(4);
    EXPECT_EQ(reader.U32(), 0U);
    EXPECT_TRUE(reader.AtEnd());
}

TEST_F(Commands, AWriteOfWhatIsNoDocumentSucceedsWithoutAnIdentifier) {
    ExpectAnswerOfAWrite(Answer(13, ByteWriter().String(u"this is no document").Written()));
    ASSERT_EQ(Answer(2, ByteWriter().String(u"").Written()), Success());
    const CallbackEndpoint endpoint;
    ExpectAnswerOfAWrite(Answer(14, ByteWriter().String(u"this is no document").Written()));
}

TEST_F(Commands, AWriteOfAnAppointmentBeforeLogonHasNobodyToTellOfItsEnd) {
    const CallPdu answer = m_connection.Call(14, ByteWriter().String(u"this is no document").Written());
    EXPECT_EQ(answer.type, PduType::kFault);
    EXPECT_EQ(answer.faultStatus, static_cast<std::uint32_t>(RPC_S_INVALID_BINDING));
    EXPECT_THAT(m_agent.Log(), HasSubstr("CMAPIObject::WriteCalendars - Begin\r\n"));
    CommandConnection another;
    EXPECT_EQ(another.Call(9, Hex("78 00")).stub, Success());
}

TEST_F(Commands, ThereIsNoEighteenthProcedure) {
    const std::string before = m_agent.Log();
    const CallPdu answer = m_connection.Call(17);
    // Windows answers with a fault. Wine's runtime finds the end of the table and answers with nothing.
    EXPECT_TRUE(answer.type == PduType::kFault || answer.stub.empty()) << ToHex(answer.stub);
    EXPECT_EQ(m_agent.Log(), before);
    CommandConnection another;
    EXPECT_EQ(another.Call(9, Hex("78 00")).stub, Success());
}

TEST_F(Commands, TextsKeepEveryCharacter) {
    EXPECT_EQ(Answer(2, ByteWriter().String(u"\u00e4\u65e5\U0001F600%s").Written()), Failure());
    EXPECT_THAT(m_agent.Log(), HasSubstr("ProfileName(\xc3\xa4\xe6\x97\xa5\xf0\x9f\x98\x80%s)\r\n"));
}

TEST_F(Commands, LongTextsArriveWhole) {
    EXPECT_EQ(Answer(2, ByteWriter().String(std::u16string(100000, u'x')).Written()), Failure());
    EXPECT_THAT(m_agent.Log(), HasSubstr("ProfileName(" + std::string(100000, 'x') + ")\r\n"));
}

TEST_F(Commands, ATextThatIsCutOffFaults) {
    ExpectFault(2, Hex("04 00 00 00  00 00 00 00  04 00 00 00  61 00"));
}

TEST_F(Commands, ATextWithoutATerminatorFaults) {
    ExpectFault(2, Hex("02 00 00 00  00 00 00 00  02 00 00 00  61 00 62 00"));
}

TEST_F(Commands, ATextThatClaimsMoreThanItHasFaults) {
    // Its length, the size of its buffer, and where it begins in that.
    for (const char* text : {"02 00 00 00  00 00 00 00  FF FF FF FF  61 00 00 00",
                             "FF FF FF FF  00 00 00 00  FF FF FF FF  61 00 00 00",
                             "FF FF FF 7F  00 00 00 00  FF FF FF 7F  61 00 00 00",
                             "02 00 00 00  01 00 00 00  02 00 00 00  61 00 00 00",
                             "02 00 00 00  FF FF FF FF  02 00 00 00  61 00 00 00",
                             "01 00 00 00  00 00 00 00  02 00 00 00  61 00 00 00"}) {
        ExpectFault(2, Hex(text));
    }
    EXPECT_TRUE(m_agent.IsRunning());
}

TEST_F(Commands, ShutdownBeforeLogonEndsTheProcess) {
    EXPECT_EQ(Answer(0), Nothing());
    EXPECT_EQ(m_agent.WaitForExit(), 0U);
}

TEST_F(Commands, NothingButShutdownEndsTheProcess) {
    EXPECT_EQ(Answer(3), Nothing());
    EXPECT_TRUE(m_agent.IsRunning());
    EXPECT_EQ(Answer(5), Hex("00 00 00 00  00 00 00 00"));
}

}  // namespace
