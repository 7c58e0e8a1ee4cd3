// A host gives three streams; a file takes the number of none of them.

#include "platform/standard_streams.h"

#include <sys/stat.h>

namespace orlo {

bool is_open(std::FILE *stream)
{
    struct stat status {};
    return fstat(fileno(stream), &status) == 0;
}

void outlive_lost_writes() {} // there are no signals

void secure_standard_streams() {}

} // namespace orlo
