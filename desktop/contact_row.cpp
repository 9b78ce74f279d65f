#include "desktop/contact_row.h"

namespace {

/// The full name, or what the parts of the name give, or the nickname.
CString NameOf(ItemDocument& document) {
    CString name = document.Field(L"FULLNAME");
    if (!name.empty()) {
        return name;
    }
    for (const wchar_t* part : {L"FirstName", L"MiddleName", L"LastName"}) {
        const CString text = document.Field(part);
        if (!name.empty() && !text.empty()) {
            name += L' ';
        }
        name += text;
    }
    return name.empty() ? document.Field(L"NickName") : name;
}

}  // namespace

TextTable::Row ContactHeadings() {
    return {L"NAME", L"COMPANY", L"PHONE", L"E-MAIL", L"FOLDER"};
}

TextTable::Row ContactRow(ItemDocument& document) {
    return {
        NameOf(document),
        document.Field(L"CompanyX"),
        document.FirstField({L"Mobile1", L"BusinessNumber", L"HomeNumber1", L"BusinessNumber2",
                             L"HomeNumber2", L"PrimaryNumber", L"OtherNumber", L"CompanyNumber",
                             L"AssistantNumber", L"CarNumber"}),
        document.FirstField({L"SP-EMAIL1", L"SP-EMAIL2", L"SP-EMAIL3"}),
        document.Field(L"CsFolder"),
    };
}
