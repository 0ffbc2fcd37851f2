#pragma once

#include "CIImage.h"

#include <vector>

/// Patches laid on a picture one after the other, each made of the picture as those before it have
/// left it. Only their own pixels, and what they are made of, are drawn for them, however long the
/// chain.
namespace orvane::Patches {

/// What the recipes of a picture's patches begin with: it stands for the picture so far, whose
/// extent and opacity it has. Of no use in any other recipe. A patch's recipe is drawn in one go:
/// it must hold no histogram and no blur so wide that it is drawn at a reduced size.
CIImage ground(const CIImage& picture);

/// The picture, of a finite extent, with each patch in the place of what lies in its extent; parts
/// of patches beyond the picture are left out. An opaque picture stays opaque: its patches' alpha
/// must be 1.
CIImage laidOn(const CIImage& picture, const std::vector<CIImage>& patches);

} // namespace orvane::Patches
