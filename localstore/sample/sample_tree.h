#pragma once

// The folders of the sample: profiles, stores and mail folders as directories.

#include <string>

namespace sample {

/// The profiles: the default one holds the sample's items, the other one any number of further contacts.
constexpr const wchar_t* kSampleProfile = L"Sample";
constexpr const wchar_t* kSecondProfile = L"Second";

/// Names of the mail folders that the sample's items go to. The first is the store's default contact folder,
/// the others stand in it.
constexpr const wchar_t* kContactsFolder = L"Contacts";
constexpr const wchar_t* kFamilyFolder = L"Família";
constexpr const wchar_t* kTasksFolder = L"People to call";
constexpr const wchar_t* kQuickContactsFolder = L"Quick Contacts";

/// Makes all directories below a root, the root with its parents included, and the folder.ini files that name
/// what cannot be guessed. A root that holds a sample already is refused: its items would be there twice.
void MakeSampleTree(const std::wstring& root);

}  // namespace sample
