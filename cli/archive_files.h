// Adding files and folders to an archive.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/foundation/zip_archive.h>

#include <string>
#include <vector>

namespace hearth_cli {

/// Adds files, and folders with all that is in them, in the order of the names of each folder; links are
/// followed. Names begin with the last part of a path; what "." and ".." hold has no folder around it. The
/// file `without`, which is being made, is passed over. Throws FileError, and InputError for a name that
/// stands twice or cannot be read back.
void AddFiles(ht::THtZIP& archive, const std::vector<std::string>& paths, ht::THtZIPMethod method,
    const std::string& without);

}
