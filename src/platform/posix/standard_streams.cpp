#include "platform/standard_streams.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace orlo {

bool is_open(std::FILE *stream) { return fcntl(fileno(stream), F_GETFD) >= 0; }

void outlive_lost_writes()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void secure_standard_streams()
{
    outlive_lost_writes();
    int number = 0;
    do // ends after the standard streams, or when no file can be opened
        number = open("/dev/null", O_RDWR);
    while (number >= 0 && number <= STDERR_FILENO);
    if (number >= 0)
        close(number);
}

} // namespace orlo
