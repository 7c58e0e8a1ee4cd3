// The folder that the user names comes first; where no file can be made in it, the one of the system for this user. While the file
// is read the system itself removes it, however the program ends ("D").

#include "platform/temporary_file.h"

#include "platform/ending_signals.h"
#include "platform/new_file.h"
#include "platform/output_files.h"
#include "platform/screen.h"

#include <cstdlib>
#include <io.h>
#include <windows.h>

namespace orlo {
namespace {

constexpr char NAME_PATTERN[] = "/fileXXXXXX";

char tmp_fname[4096];          // settled before file_exists is set
char large_piece[LARGE_WRITE]; // of the file, on its way to it
bool file_exists = false;      // from the file's creation to its removal; changed while ending signals are held back

// called in the thread of the ending signal
void remove_in_signal()
{
    flush_screen_in_signal();
    if (file_exists)
        DeleteFileA(tmp_fname);
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
    char        usual[MAX_PATH + 1];
    return file >= 0 || GetTempPathA(sizeof usual, usual) == 0 ? file : make_file(usual);
}

// the open file as a stream, null without one
std::FILE *make_stream(int file)
{
    if (file < 0)
        return nullptr;
    std::FILE *stream = _fdopen(file, "w");
    if (stream == nullptr) {
        _close(file);
        DeleteFileA(tmp_fname);
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
        file_exists = true;
        on_ending_signal(remove_in_signal);
    }
    release_ending_signals();
    return stream;
}

std::FILE *reopen_temporary_file() { return std::fopen(tmp_fname, "rD"); }

void remove_temporary_file()
{
    if (!file_exists)
        return;
    hold_ending_signals();
    DeleteFileA(tmp_fname); // unless it was read
    file_exists = false;
    let_signals_end();
    release_ending_signals();
}

} // namespace orlo
