#pragma once

// How single properties of a message are compared with what may stand there.

#include <mapidefs.h>

#include <string>
#include <vector>

#include "support/text.h"
#include "tests/faults/operation.h"

/// What stands for a property that a message does not have.
inline constexpr const wchar_t* kNoValue = L"(none)";

/// A property as text: a number, a flag as 0 or 1, a text, texts with semicolons between them, bytes in
/// hexadecimal digits, or a time as TimeText writes it.
CString ShownProperty(IMessage* message, ULONG tag);

/// A time as sortable text, in UTC: one that is given in UTC, and one in the machine's zone.
CString TimeText(const SYSTEMTIME& utc);
CString TimeTextOfLocal(const SYSTEMTIME& local);

/// Looks at the properties of a message, which was added or else changed, one by one. Nothing that failed may
/// leave more than it has to do with: a call of the store the property that it names, and memory one at most,
/// or none where it failed in the document already. Behind the first failure all others may fail as well.
class WrittenProperties {
  public:
    WrittenProperties(IMessage* message, bool wasAdded, bool isDocumentWhole, const Outcome& outcome);

    [[nodiscard]] IMessage* Message() const { return m_message; }
    [[nodiscard]] bool WasAdded() const { return m_wasAdded; }

    /// Expects the new value, or the old one if it may be left. One that is written twice has the value
    /// `between` behind a failure of the second time.
    void Tagged(ULONG tag, const CString& old, const CString& fresh);
    void Named(LONG id, ULONG type, const CString& old, const CString& fresh,
               const CString& between = CString());
    /// The same of a new message alone; one that is changed keeps its value.
    void OfNew(ULONG tag, const CString& old, const CString& fresh);
    void NamedOfNew(LONG id, ULONG type, const CString& old, const CString& fresh);
    /// The class, in place of which the store gives a new message that of mail.
    void Class(const CString& fresh);
    void Categories(const CString& fresh);

    /// True if something may be as it was that belongs to calls of the store with one of these words in them.
    bool MayBeLeft(const std::vector<std::string>& words);

  private:
    void Expect(ULONG tag, const std::vector<std::string>& words, const std::vector<CString>& left,
                const CString& fresh);
    /// What was there before: nothing in a new message.
    [[nodiscard]] CString Old(const CString& old) const { return m_wasAdded ? CString(kNoValue) : old; }

    IMessage* m_message;
    bool m_wasAdded;
    const Outcome* m_outcome;
    bool m_mayMemoryLeaveOne;
};
