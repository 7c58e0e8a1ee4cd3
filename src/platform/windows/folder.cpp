#include "platform/folder.h"

#include <direct.h>
#include <limits.h>

namespace orlo {

std::string working_folder()
{
    char path[PATH_MAX];
    return _getcwd(path, PATH_MAX) != nullptr ? path : "";
}

void enter_folder() {}

} // namespace orlo
