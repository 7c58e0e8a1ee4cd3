// The C library takes every device for a terminal, NUL among them; a console has a mode.

#include "platform/terminal.h"

#include <io.h>
#include <windows.h>

namespace orlo {

bool is_terminal(std::FILE *stream)
{
    DWORD mode = 0;
    return _fileno(stream) >= 0 && GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != 0;
}

} // namespace orlo
