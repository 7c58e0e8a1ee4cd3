// The bytes of a score are the same everywhere: no file is opened and nothing is shown with line ends of the system's own.

#include "platform/standard_streams.h"

#include <cstdlib>
#include <fcntl.h>
#include <io.h>

namespace orlo {
namespace {

std::FILE *standard(int number)
{
    if (number == 0)
        return stdin;
    return number == 1 ? stdout : stderr;
}

// before anything is written, in every program
const bool all_is_binary = [] {
    _fmode = _O_BINARY;
    for (int number = 0; number < 3; ++number)
        if (is_open(standard(number)))
            _setmode(number, _O_BINARY);
    return true;
}();

} // namespace

bool is_open(std::FILE *stream) { return _fileno(stream) >= 0 && _get_osfhandle(_fileno(stream)) >= 0; }

void outlive_lost_writes() {} // they raise no signals

void secure_standard_streams()
{
    for (int number = 0; number < 3; ++number)
        if (!is_open(standard(number)))
            static_cast<void>(std::freopen("NUL", number == 0 ? "r" : "w", standard(number)));
}

} // namespace orlo
