#include "platform/folder.h"

#include <direct.h>
#include <limits.h>
#include <windows.h>

namespace orlo {

std::string working_folder()
{
    char path[PATH_MAX];
    return _getcwd(path, PATH_MAX) != nullptr ? path : "";
}

std::string temporary_folder()
{
    char path[MAX_PATH + 1];
    return GetTempPathA(sizeof path, path) != 0 ? path : "";
}

void enter_folder() {}

} // namespace orlo
