// The home of the resource hook's table of virtuals.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/resource_loader.h>

namespace ht {

IHtResourceLoader::~IHtResourceLoader() = default;

}
