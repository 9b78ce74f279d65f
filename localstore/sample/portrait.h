#pragma once

// Pictures for the sample's contacts, drawn here so that no photo of a person is needed.

#include <windows.h>

#include <vector>

namespace sample {

/// A head before a plain ground. Colours are 0xRRGGBB.
struct Portrait {
    unsigned size = 0;  ///< width and height; 0 for no picture
    unsigned ground = 0;
    unsigned skin = 0;
    unsigned hair = 0;
    unsigned shirt = 0;
    unsigned grain = 0;  ///< how far each pixel may be off; grain makes a file large
};

/// The picture as a JPEG file. COM must be there on the thread.
std::vector<BYTE> DrawPortrait(const Portrait& portrait);

}  // namespace sample
