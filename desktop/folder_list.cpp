#include "desktop/folder_list.h"

#include "desktop/text_table.h"

namespace {

constexpr std::size_t kIndentation = 2;

CString DefaultMark(bool isDefault) {
    return isDefault ? WIDE("default") : WIDE("");
}

CString NumberText(std::size_t number) {
    return CString::FromNumber(static_cast<long long>(number));
}

TextTable::Row TreeRow(const FolderEntry& folder, std::size_t number) {
    CString name;
    name.append(folder.depth * kIndentation, WIDE(' '));
    name += folder.name;
    return {NumberText(number), name, folder.depth == 0 ? CString(WIDE("store")) : folder.containerClass,
            DefaultMark(folder.isDefault)};
}

}  // namespace

CString ProfileListText(const std::vector<ProfileEntry>& profiles, std::size_t width) {
    TextTable table({WIDE("PROFILE"), WIDE("DEFAULT")});
    for (const ProfileEntry& profile : profiles) {
        table.Add({profile.name, DefaultMark(profile.isDefault)});
    }
    return table.Aligned(width);
}

CString FolderListText(const std::vector<FolderEntry>& folders, std::size_t width) {
    TextTable tree({WIDE("NO"), WIDE("FOLDER"), WIDE("CLASS"), WIDE("DEFAULT")});
    TextTable identifiers({WIDE("NO"), WIDE("IDENTIFIER, FOR --folder")});
    for (std::size_t i = 0; i < folders.size(); ++i) {
        tree.Add(TreeRow(folders[i], i + 1));
        if (folders[i].depth != 0) {
            identifiers.Add({NumberText(i + 1), folders[i].id});
        }
    }
    CString text = tree.Aligned(width);
    if (identifiers.Size() != 0) {
        text += WIDE('\n');
        text += identifiers.Aligned(0);
    }
    return text;
}
