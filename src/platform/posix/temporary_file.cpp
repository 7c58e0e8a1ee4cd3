// The folder that the user names comes first; where no file can be made in it, the system's own.

#include "platform/temporary_file.h"

#include "platform/ending_signals.h"
#include "platform/new_file.h"
#include "platform/output_files.h"
#include "platform/screen.h"

#include <climits>
#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace orlo {
namespace {

constexpr char NAME_PATTERN[] = "/fileXXXXXX";
constexpr char USUAL_FOLDER[] = "/tmp"; // which there always is (POSIX.1-2017, 10.1)

char                       tmp_fname[PATH_MAX];      // settled before file_exists is set
char                       large_piece[LARGE_WRITE]; // of the file, on its way to it
volatile std::sig_atomic_t file_exists = 0;          // 1 from the file's creation to its removal

// called by a signal, which may come at any time
void remove_in_signal()
{
    flush_screen_in_signal();
    if (file_exists != 0)
        static_cast<void>(unlink(tmp_fname));
}

// a new file in a folder; its descriptor, or -1
int make_file(const char *folder)
{
    const int length = std::snprintf(tmp_fname, sizeof tmp_fname, "%s%s", folder, NAME_PATTERN);
    return length < static_cast<int>(sizeof tmp_fname) ? make_new_file(tmp_fname) : -1;
}

int make_file_somewhere()
{
    const char *named = std::getenv("TMPDIR");
    const int   file  = named != nullptr && *named != '\0' ? make_file(named) : -1;
    return file >= 0 ? file : make_file(USUAL_FOLDER);
}

// the open file as a stream, null without one
std::FILE *make_stream(int file)
{
    if (file < 0)
        return nullptr;
    std::FILE *stream = fdopen(file, "w");
    if (stream == nullptr) {
        close(file);
        static_cast<void>(unlink(tmp_fname));
    } else {
        static_cast<void>(std::setvbuf(stream, large_piece, _IOFBF, sizeof large_piece));
    }
    return stream;
}

} // namespace

std::FILE *open_temporary_file()
{
    hold_ending_signals();
    std::FILE *stream = make_stream(make_file_somewhere());
    if (stream != nullptr) {
        file_exists = 1;
        on_ending_signal(remove_in_signal);
    }
    release_ending_signals();
    return stream;
}

std::FILE *reopen_temporary_file() { return std::fopen(tmp_fname, "r"); }

void remove_temporary_file()
{
    if (file_exists == 0)
        return;
    hold_ending_signals();
    std::remove(tmp_fname);
    file_exists = 0;
    let_signals_end();
    release_ending_signals();
}

} // namespace orlo
