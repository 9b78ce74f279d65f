#include "localstore/msg_content.h"

#include <gtest/gtest.h>

#include "localstore/little_endian.h"

using namespace localstore;

namespace {

MessageContent Sample() {
    MessageContent message;
    message.properties.Set(Property::OfText(0x0037001F, WIDE("subject")));
    PropertyName name;
    name.set = kPropertySetPublicStrings;
    name.isText = true;
    name.text = WIDE("Keywords");
    const std::optional<PropertyId> id = message.AddName(name);
    message.properties.Set(Property::OfText(MakeTag(*id, kTypeUnicode), WIDE("value")));
    for (const std::uint32_t number : {0U, 3U}) {
        PartContent part;
        part.number = number;
        part.header = Bytes(kAttachmentHeader);
        part.properties.Set(Property::OfBytes(0x37010102, Bytes(number + 1, 7)));
        part.rest.storages[WIDE("__substg1.0_3701000D")].AddStream(WIDE("inner"), {1, 2});
        message.attachments.push_back(std::move(part));
    }
    PartContent recipient;
    recipient.header = Bytes(kAttachmentHeader);
    recipient.properties.Set(Property::OfFixed(0x0C150003, 1));
    message.recipients.push_back(std::move(recipient));
    message.rest.AddStream(WIDE("unknown"), {4});
    return message;
}

}  // namespace

TEST(MessageContent, ComesBackFromItsFile) {
    const StorageTree file = WriteMessage(Sample());
    const char* reason = nullptr;
    const std::optional<MessageContent> read = ReadMessage(file, reason);
    ASSERT_TRUE(read);
    EXPECT_EQ(TextOfBytes(read->properties.Find(0x0037)->Data()), WIDE("subject"));
    ASSERT_EQ(read->attachments.size(), 2U);
    EXPECT_EQ(read->attachments[1].number, 3U);
    EXPECT_EQ(read->attachments[1].properties.Find(0x3701)->Data(), Bytes(4, 7));
    EXPECT_EQ(read->attachments[0].rest, Sample().attachments[0].rest);
    ASSERT_EQ(read->recipients.size(), 1U);
    EXPECT_EQ(read->rest.streams.size(), 1U);
    // A second rewrite changes nothing at all.
    EXPECT_EQ(WriteMessage(*read), file);
}

TEST(MessageContent, CountsPartsInTheHeader) {
    const StorageTree file = WriteMessage(Sample());
    const Bytes& stream = *file.streams.at(kPropertyStreamName);
    EXPECT_EQ(ReadU32(stream, 8), 1U);
    EXPECT_EQ(ReadU32(stream, 12), 4U);
    EXPECT_EQ(ReadU32(stream, 16), 1U);
    EXPECT_EQ(ReadU32(stream, 20), 2U);
}

TEST(MessageContent, CarriesTheClassOfMessageFiles) {
    EXPECT_EQ(WriteMessage(MessageContent()).classId[0], 0x0B);
    MessageContent other;
    other.rest.classId[0] = 1;
    EXPECT_EQ(WriteMessage(other).classId[0], 1);
}

TEST(MessageContent, NumbersNewAttachmentsBehindAllThatThereEverWere) {
    MessageContent message = Sample();
    EXPECT_EQ(message.NextAttachment(), 4U);
    message.attachments.clear();
    message.header[12] = 9;
    EXPECT_EQ(message.NextAttachment(), 9U);
    message.header[15] = 0xFF;
    EXPECT_EQ(message.NextAttachment(), 0U);
}

TEST(MessageContent, NumbersNewAttachmentsBehindThoseThatWereNoted) {
    MessageContent message = Sample();
    message.NoteNextAttachment(0x01020304);
    EXPECT_EQ(message.NextAttachment(), 0x01020304U);
    EXPECT_EQ(ReadU32(*WriteMessage(message).streams.at(kPropertyStreamName), 12), 0x01020304U);
}

TEST(MessageContent, FindsAnAttachmentByItsNumberAlone) {
    const MessageContent message = Sample();
    EXPECT_EQ(message.FindAttachment(3), &message.attachments[1]);
    EXPECT_EQ(message.FindAttachment(1), nullptr);
}

TEST(MessageContent, HasNoNumberBehindTheLastOne) {
    MessageContent message = Sample();
    message.attachments[1].number = 0xFFFFFFFF;
    EXPECT_EQ(message.NextAttachment(), 0xFFFFFFFFU);
}

TEST(MessageContent, HasNoIdentifierBehindTheLastOne) {
    MessageContent message;
    message.properties.Set(Property::OfFixed(0xFFFF0003, 1));
    PropertyName name;
    name.number = 5;
    EXPECT_FALSE(message.AddName(name));
}

TEST(MessageContent, LeavesDamagedPartsInTheFile) {
    StorageTree file = WriteMessage(Sample());
    file.storages[WIDE("__attach_version1.0_#00000007")].AddStream(kPropertyStreamName, Bytes(3));
    file.storages[WIDE("__attach_version1.0_#0000000G")].AddStream(kPropertyStreamName, Bytes(8));
    file.storages[WIDE("__attach_version1.0_#0000000/")].AddStream(kPropertyStreamName, Bytes(8));
    file.storages[WIDE("__attach_version1.0_#0000000:")].AddStream(kPropertyStreamName, Bytes(8));
    file.storages[WIDE("__attach_version1.0_#1")];
    const char* reason = nullptr;
    const std::optional<MessageContent> read = ReadMessage(file, reason);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->attachments.size(), 2U);
    EXPECT_EQ(WriteMessage(*read).storages.size(), file.storages.size());
}

TEST(MessageContent, TakesNoNameThatAPartUsesWithoutOne) {
    MessageContent message;
    PartContent part;
    part.header = Bytes(kAttachmentHeader);
    part.properties.Set(Property::OfFixed(0x80200003, 1));
    message.attachments.push_back(part);
    message.properties.Set(Property::OfFixed(0x80100003, 1));
    PropertyName name;
    name.number = 5;
    name.set[0] = 1;
    EXPECT_EQ(message.AddName(name), 0x8021);
}

TEST(MessageContent, TakesNoNameThatARecipientUsesWithoutOne) {
    MessageContent message;
    message.attachments.emplace_back();
    message.recipients.emplace_back();
    message.recipients[0].properties.Set(Property::OfFixed(0x80300003, 1));
    PropertyName name;
    name.number = 5;
    EXPECT_EQ(message.AddName(name), 0x8031);
}

TEST(MessageContent, SaysWhyAFileIsNoMessage) {
    const char* reason = nullptr;
    EXPECT_FALSE(ReadMessage(StorageTree(), reason));
    EXPECT_STREQ(reason, "it has no readable property stream");
    StorageTree file = WriteMessage(Sample());
    file.storages[kNamesStorageName].AddStream(ValueStreamName(0x00030102), Bytes(std::size_t{0x8001} * 8));
    EXPECT_FALSE(ReadMessage(file, reason));
    EXPECT_STREQ(reason, "it has more named properties than the format can number");
}

TEST(MessageContent, TakesAtMostTheLimitOfParts) {
    StorageTree file;
    file.AddStream(kPropertyStreamName, Bytes(kTopLevelHeader));
    for (std::uint32_t number = 0; number < kMostParts + 5; ++number) {
        const Text name = WIDE("__attach_version1.0_#") + HexDigits(number);
        file.storages[name].AddStream(kPropertyStreamName, Bytes(kAttachmentHeader));
    }
    const char* reason = nullptr;
    const std::optional<MessageContent> read = ReadMessage(file, reason);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->attachments.size(), kMostParts);
    EXPECT_EQ(read->rest.storages.size(), 5U);
}
