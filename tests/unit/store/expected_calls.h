#pragma once

// The calls of a write on its message as text, the ones that are expected and the ones that were made.

#include <windows.h>

#include <regex>
#include <string>

#include "localstore/recorder.h"
#include "tests/unit/timezone/zone_rule.h"

/// The calls on a message, written as in the recorder's lines but without the object.
class Expected {
  public:
    /// A text under a tag; removed if it is empty.
    Expected& Text(const char* tag, const std::string& text) {
        return Add(text.empty() ? std::string("IMessage::DeleteProps ") + tag
                                : std::string("IMessage::SetProps ") + tag + "=\"" + text + "\"");
    }
    /// The same under a number in PSETID_Address.
    Expected& Named(const std::string& id, const std::string& text) {
        Name("{00062004}:" + id);
        return Text(("{00062004}:" + id + "/001F").c_str(), text);
    }
    /// A value under a number in one of the two property sets of appointments, which do not overlap: as its
    /// type and its text.
    Expected& Appointment(const std::string& id, const std::string& type, const std::string& value) {
        return Name(AppointmentName(id)).Set(AppointmentName(id) + "/" + type + "=" + value);
    }
    Expected& AppointmentText(const std::string& id, const std::string& text) {
        Name(AppointmentName(id));
        return Text((AppointmentName(id) + "/001F").c_str(), text);
    }
    Expected& DeleteAppointment(const std::string& id, const std::string& type) {
        return Name(AppointmentName(id)).Delete(AppointmentName(id) + "/" + type);
    }
    /// The search for a name, which makes it if it is not there.
    Expected& Name(const std::string& name) {
        return Add("IMessage::GetIDsFromNames " + name + " flags=0x00000002");
    }
    Expected& Set(const std::string& value) { return Add("IMessage::SetProps " + value); }
    Expected& Delete(const std::string& tag) { return Add("IMessage::DeleteProps " + tag); }
    Expected& Email(const std::string& below, const std::string& own, const std::string& above,
                    const std::string& third, const std::string& address) {
        return Named(below, address.empty() ? "" : "SMTP")
            .Named(own, address)
            .Named(above, address)
            .Named(third, address);
    }
    Expected& Add(const std::string& line) {
        m_lines += line + "\n";
        return *this;
    }
    /// All calls, one a line.
    [[nodiscard]] const std::string& Lines() const { return m_lines; }

    static std::string AppointmentName(const std::string& id) {
        return (id < "8500" ? "{00062002}:" : "{00062008}:") + id;
    }

  private:
    std::string m_lines;
};

/// A local time as the recorder shows the UTC time of a property.
inline std::string Time(const LocalTime& local) {
    return std::to_string(FileTimeOf(ZoneRule::OfThisProcess().ToUtc(local)));
}

/// The calls since the last look, without the object, which has another name for each test, without
/// identifiers and without the present.
inline std::string TakeCalls() {
    static const std::regex identifier("\\bid=[0-9A-F]+");
    static const std::regex present("(0x7FF[BC]0040)=[0-9]*");
    std::string lines;
    for (const localstore::recorder::Call& call : localstore::recorder::Calls()) {
        const std::string line = call.method + (call.arguments.empty() ? "" : " " + call.arguments);
        lines += std::regex_replace(std::regex_replace(line, identifier, "id=*"), present, "$1=*") + "\n";
    }
    localstore::recorder::ClearCalls();
    return lines;
}
