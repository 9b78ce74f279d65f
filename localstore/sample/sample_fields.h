#pragma once

// What a contact of the sample can hold, and the properties that each field is kept in.

#include <windows.h>

#include <mapidefs.h>

namespace sample {

enum class Field {
    Subject,  ///< the title of an item that has no name of a person
    GivenName,
    MiddleName,
    Surname,
    NamePrefix,
    NameSuffix,
    Nickname,
    YomiGivenName,
    YomiSurname,
    Company,
    Department,
    JobTitle,
    BusinessPhone,
    BusinessPhone2,
    HomePhone,
    HomePhone2,
    Mobile,
    Pager,
    OtherPhone,
    OtherFax,
    HomeFax,
    BusinessFax,
    Callback,
    Car,
    Isdn,
    CompanyPhone,
    AssistantPhone,
    PrimaryPhone,
    Radio,
    Telex,
    TtyTdd,
    PersonalWebPage,
    BusinessWebPage,
    HomeStreet,
    HomeCity,
    HomeState,
    HomeZip,
    HomeCountry,
    HomePobox,
    BusinessStreet,
    BusinessCity,
    BusinessState,
    BusinessZip,
    BusinessCountry,
    BusinessPobox,
    OtherStreet,
    OtherCity,
    OtherState,
    OtherZip,
    OtherCountry,
    OtherPobox,
    InstantMessaging,  ///< with the service in front, as "SKYPE:name"
    Email1,
    Email2,
    Email3,
    ExchangeAddress,  ///< makes the first e-mail address one of type "EX"; the X.500 text
    Categories,       ///< several separated by ";"
    Birthday,         ///< as "2001-12-31"
    Anniversary,      ///< the same
    Body,
};

/// The properties of a field that is a plain text; 0 for none. A business address stands in a numbered
/// property, which mail programs write beside the named one.
struct TextField {
    Field field;
    ULONG tag;
    LONG namedId;  ///< in PSETID_Address
};

/// The properties of a field, or null for a field that needs more than a text.
const TextField* FindTextField(Field field);

/// Property sets (MS-OXPROPS 1.3.2).
extern const GUID kAddressSet;
extern const GUID kAppointmentSet;
extern const GUID kCommonSet;
extern const GUID kPublicStringsSet;

}  // namespace sample
