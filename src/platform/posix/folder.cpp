#include "platform/folder.h"

#include <climits>
#include <unistd.h>

namespace orlo {

std::string working_folder()
{
    char path[PATH_MAX];
    return getcwd(path, sizeof path) != nullptr ? path : "";
}

void enter_folder() {}

} // namespace orlo
