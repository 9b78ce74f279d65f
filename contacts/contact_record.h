#pragma once

// A contact in memory: the open form, a list of fields with ids, and the flat form with one member a field,
// from which properties are made.

#include <array>
#include <cstdint>
#include <vector>

#include "support/containers.h"
#include "support/record_entries.h"
#include "support/text.h"
#include "timezone/ole_date_time.h"

/// One field of a contact. The members without a meaning of their own are carried along with the entry.
class CContactInfoEx {
  public:
    CContactInfoEx() = default;
    CContactInfoEx(const CContactInfoEx&) = default;
    CContactInfoEx& operator=(const CContactInfoEx&) = default;
    virtual ~CContactInfoEx() = default;

    /// Back to the defaults.
    void Reset();

    std::int32_t m_nTypeCode = 100;
    std::int32_t m_nReserved1 = 0;
    std::int32_t m_nFieldId = 0;
    CString m_strValue;
    std::array<std::int32_t, 3> m_arrReserved2{-1, -1, -1};
    CString m_strReserved3;
    std::int32_t m_nReserved4 = -1;
    CString m_strPicPath;  ///< the contact's photo, on one entry only: the first of the name
    std::int32_t m_nReserved5 = 0;
    CString m_strReserved6;
    CMap<std::int32_t, CString> m_mapReserved7;
    CString m_strReserved8;
    std::int32_t m_nReserved9 = -1;
};

/// A contact as a list of fields, with what is to be done with it.
class CContactEx {
  public:
    CContactEx() { Reset(); }
    CContactEx(const CContactEx&) = delete;
    CContactEx& operator=(const CContactEx&) = delete;
    virtual ~CContactEx() { Reset(); }

    /// Deletes all entries; texts become empty and both dates the current local time.
    void Reset();

    /// Appends a field. Returns 1, or 0 with nothing added for an empty value.
    int AddField(std::int32_t fieldId, const CString& value) { return AddEntry(m_arrFields, fieldId, value); }

    /// Appends a deep copy of an entry; ids may repeat. Returns 1, or 0 if there is no memory.
    int AddFieldCopy(const CContactInfoEx& source) { return AddEntryCopy(m_arrFields, source); }

    std::int32_t m_nTypeCode = 100;
    std::int32_t m_lFlag = 0;  ///< 8 add, 4 update, 32 delete
    std::array<std::int32_t, 3> m_arrReserved1{-1, -1, -1};
    std::array<std::int32_t, 2> m_arrReserved2{};
    RecordEntries<CContactInfoEx> m_arrFields;  ///< in order of insertion
    std::vector<std::uint8_t> m_arrReserved3;
    std::int32_t m_nReserved4 = 0;
    CString m_strPIMID;     ///< entry identifier as hexadecimal text
    CString m_strCsFolder;  ///< folder path
    COleDateTime m_dtLastModified;
    COleDateTime m_dtStamp;
};

/// The entry that holds the path of the contact's photo: the first one of the first name, else of the last,
/// middle or full name. Null if there is none of these.
CContactInfoEx* FindPhotoEntry(const CContactEx& contact);

/// One postal address of the flat form.
struct tagContactAddress {
    CString m_strCountry;
    CString m_strState;
    CString m_strZip;
    CString m_strCity;
    CString m_strStreet1;
    CString m_strReserved;
    CString m_strPobox;
};

/// A contact with one member a field. An empty text means that the field is absent.
struct tagContactFields {
    /// All texts empty, the flag 0, both dates the current local time.
    void Reset();

    /// Takes over a contact. Of fields that share a member, the last in the list wins; ids without a member
    /// are dropped.
    void CopyFrom(const CContactEx& contact);

    std::int32_t m_lFlag = 0;
    CString m_strFirstName;
    CString m_strMiddleName;
    CString m_strLastName;
    CString m_strFullName;
    CString m_strBusinessNumber1;
    CString m_strBusinessNumber2;
    CString m_strHomeNumber1;
    CString m_strHomeNumber2;
    CString m_strMobile;
    CString m_strPager;
    CString m_strOtherNumber;
    CString m_strOtherFax;
    CString m_strHomeFax;
    CString m_strBusinessFax;
    CString m_strCallBackNumber;
    CString m_strCarNumber;
    CString m_strIsdnNumber;
    CString m_strCompanyNumber;
    CString m_strAssistantNumber;
    CString
        m_strPrimaryNumber;  ///< no field fills it: a primary number is read from the store and never written
    CString m_strRadioNumber;
    CString m_strTelexNumber;
    CString m_strTtyTddNumber;
    CString m_strReserved1;
    CString m_strEmail1;
    CString m_strEmail2;
    CString m_strEmail3;
    CString m_strWeb1;
    CString m_strWeb2;
    std::array<CString, 3> m_arrReserved2;
    CString m_strIMAddress;  ///< with its service as prefix
    std::array<CString, 3> m_arrReserved3;
    tagContactAddress m_HomeAddress;
    tagContactAddress m_BusinessAddress;
    tagContactAddress m_OtherAddress;
    CString m_strNickName;
    CString m_strPrefixName;
    CString m_strCompany;
    std::array<CString, 3> m_arrReserved4;
    CString m_strJobTitle;
    CString m_strBody;
    CString m_strReserved5;
    CString m_strSuffixName;
    std::array<CString, 5> m_arrReserved6;
    CString m_strBirthday;     ///< the date's text
    CString m_strAnniversary;  ///< the date's text
    CString m_strYomiFirstName;
    CString m_strYomiLastName;
    CString m_strPicPath;
    CString m_strCategories;  ///< separated by ";"
    CString m_strPIMID;
    CString m_strCsFolder;
    COleDateTime m_dtStamp = COleDateTime::GetCurrentTime();
    COleDateTime m_dtLastModified = COleDateTime::GetCurrentTime();
};
