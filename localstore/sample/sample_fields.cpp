#include "localstore/sample/sample_fields.h"

#include <algorithm>
#include <iterator>

namespace sample {

const GUID kAppointmentSet = {0x00062002, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
const GUID kAddressSet = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
const GUID kCommonSet = {0x00062008, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
const GUID kPublicStringsSet = {0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

namespace {

using enum Field;

// Tags and numbers as in MS-OXPROPS.
constexpr TextField kTextFields[] = {
    {GivenName, 0x3A06001F, 0},
    {MiddleName, 0x3A44001F, 0},
    {Surname, 0x3A11001F, 0},
    {NamePrefix, 0x3A45001F, 0},
    {NameSuffix, 0x3A05001F, 0},
    {Nickname, 0x3A4F001F, 0},
    {YomiGivenName, 0, 0x802C},
    {YomiSurname, 0, 0x802D},
    {Company, 0x3A16001F, 0},
    {Department, 0x3A18001F, 0},
    {JobTitle, 0x3A17001F, 0},
    {BusinessPhone, 0x3A08001F, 0},
    {BusinessPhone2, 0x3A1B001F, 0},
    {HomePhone, 0x3A09001F, 0},
    {HomePhone2, 0x3A2F001F, 0},
    {Mobile, 0x3A1C001F, 0},
    {Pager, 0x3A21001F, 0},
    {OtherPhone, 0x3A1F001F, 0},
    {OtherFax, 0x3A23001F, 0},
    {HomeFax, 0x3A25001F, 0},
    {BusinessFax, 0x3A24001F, 0},
    {Callback, 0x3A02001F, 0},
    {Car, 0x3A1E001F, 0},
    {Isdn, 0x3A2D001F, 0},
    {CompanyPhone, 0x3A57001F, 0},
    {AssistantPhone, 0x3A2E001F, 0},
    {PrimaryPhone, 0x3A1A001F, 0},
    {Radio, 0x3A1D001F, 0},
    {Telex, 0x3A2C001F, 0},
    {TtyTdd, 0x3A4B001F, 0},
    {PersonalWebPage, 0x3A50001F, 0},
    {BusinessWebPage, 0x3A51001F, 0},
    {HomeStreet, 0x3A5D001F, 0},
    {HomeCity, 0x3A59001F, 0},
    {HomeState, 0x3A5C001F, 0},
    {HomeZip, 0x3A5B001F, 0},
    {HomeCountry, 0x3A5A001F, 0},
    {HomePobox, 0x3A5E001F, 0},
    {BusinessStreet, 0x3A29001F, 0x8045},
    {BusinessCity, 0x3A27001F, 0x8046},
    {BusinessState, 0x3A28001F, 0x8047},
    {BusinessZip, 0x3A2A001F, 0x8048},
    {BusinessCountry, 0x3A26001F, 0x8049},
    {BusinessPobox, 0x3A2B001F, 0x804A},
    {OtherStreet, 0x3A63001F, 0},
    {OtherCity, 0x3A5F001F, 0},
    {OtherState, 0x3A62001F, 0},
    {OtherZip, 0x3A61001F, 0},
    {OtherCountry, 0x3A60001F, 0},
    {OtherPobox, 0x3A64001F, 0},
    {InstantMessaging, 0, 0x8062},
};

}  // namespace

const TextField* FindTextField(Field field) {
    const auto* const found = std::ranges::find(kTextFields, field, &TextField::field);
    return found == std::end(kTextFields) ? nullptr : found;
}

}  // namespace sample
