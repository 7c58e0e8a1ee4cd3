#include "gather/run_piece.h"

#include "base/observer.h"
#include "driver/run.h"
#include "platform/companion.h"
#include "platform/file_identity.h"
#include "platform/file_names.h"

#include <algorithm>
#include <cstdio>

namespace orlo::gather {
namespace {

// the first bytes of a file, one more than there may be; nothing of one that can't be read
std::string beginning_of(const std::string &name, std::size_t most)
{
    std::string bytes;
    std::FILE  *file = std::fopen(name.c_str(), "r");
    if (file == nullptr)
        return bytes;
    char block[65536];
    for (std::size_t got = 1; got > 0 && bytes.size() <= most;) { // ends with the file, or with too many bytes
        got = std::fread(block, 1, std::min(sizeof block, most + 1 - bytes.size()), file);
        bytes.append(block, got);
    }
    std::fclose(file);
    return bytes;
}

} // namespace

std::string find_piece(PieceFile &file)
{
    if (!file.name.ends_with(".csd"))
        return {};
    if (is_special(file.name))
        return "a Csound document is read twice, and has to be a file";
    const std::string text = beginning_of(file.name, MOST_CSD);
    if (!is_csd(text))
        return {};
    file.score.emplace();
    return text.size() > MOST_CSD ? "it has more than " + std::to_string(MOST_CSD) + " bytes" : find_csd_score(text, *file.score);
}

bool run_piece(const PieceFile &file, bool midi, Detail detail, Piece &piece, int &status)
{
    if (file.score)
        piece.source.skip_in_piece(file.score->begin, file.score->line);
    start_collecting(piece, detail);
    observer = &collecting_observer(detail);
    status = explain_run(file.name.c_str(), midi, file.score ? Extent{file.score->begin, file.score->end} : Extent{0, WHOLE_FILE});
    observer = nullptr;
    return end_collecting();
}

bool is_input(const Piece &piece, const std::string &name)
{
    return name != STANDARD_OUTPUT &&
           std::any_of(piece.source.files().begin(), piece.source.files().end(),
                       [&name](const File &file) { return file.found && same_file(file.name.c_str(), name.c_str()); });
}

} // namespace orlo::gather
