// The folder that the user names comes first; where no file can be made in it, the system's own.

#include "platform/temporary_file.h"

#include "platform/ending_signals.h"
#include "platform/file_names.h"
#include "platform/folder.h"
#include "platform/new_file.h"
#include "platform/output_files.h"
#include "platform/screen.h"

#include <csignal>
#include <cstdlib>
#include <string>

namespace orlo {
namespace {

constexpr char NAME_PATTERN[] = "/fileXXXXXX";

char                       tmp_fname[LONGEST_NAME];  // settled before file_exists is set
char                       large_piece[LARGE_WRITE]; // of the file, on its way to it
volatile std::sig_atomic_t file_exists = 0;          // 1 from the file's creation to its removal

// called by a signal, which may come at any time
void remove_in_signal()
{
    flush_screen_in_signal();
    if (file_exists != 0)
        remove_file(tmp_fname);
}

// a new file in a folder, or null
std::FILE *make_file(const char *folder)
{
    const int length = std::snprintf(tmp_fname, sizeof tmp_fname, "%s%s", folder, NAME_PATTERN);
    return length < static_cast<int>(sizeof tmp_fname) ? make_new_file(tmp_fname) : nullptr;
}

std::FILE *make_file_somewhere()
{
    const char       *named  = std::getenv("TMPDIR");
    std::FILE        *stream = named != nullptr && *named != '\0' ? make_file(named) : nullptr;
    const std::string usual  = temporary_folder();
    return stream != nullptr || usual.empty() ? stream : make_file(usual.c_str());
}

} // namespace

std::FILE *open_temporary_file()
{
    hold_ending_signals();
    std::FILE *stream = make_file_somewhere();
    if (stream != nullptr) {
        static_cast<void>(std::setvbuf(stream, large_piece, _IOFBF, sizeof large_piece));
        file_exists = 1;
        on_ending_signal(remove_in_signal);
    }
    release_ending_signals();
    return stream;
}

std::FILE *reopen_temporary_file() { return open_last(tmp_fname); }

void remove_temporary_file()
{
    if (file_exists == 0)
        return;
    hold_ending_signals();
    remove_file(tmp_fname); // where it is there still
    file_exists = 0;
    let_signals_end();
    release_ending_signals();
}

} // namespace orlo
