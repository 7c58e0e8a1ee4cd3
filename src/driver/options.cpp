// The file names are the last two arguments, so the first argument that is no option must be the last but one.

#include "driver/options.h"

#include "base/switches.h"
#include "diag/report.h"
#include "platform/file_identity.h"
#include "platform/output_files.h"

#include <cstring>

namespace orlo {

const char *in_fname;
const char *out_fname;
const char *log_fname;
const char *exp_fname;

namespace {

constexpr char banner[]  = "\nOrlo (%s, %s, %s)\n";
constexpr char credits[] = "A score generator for Csound and MIDI\n";

// the build settles them, so that the same sources give the same bytes, or the compiler
#ifndef ORLO_DATE
#define ORLO_DATE __DATE__
#define ORLO_TIME __TIME__
#endif

void print_version(std::FILE *stream)
{
    std::fprintf(stream, banner, ORLO_VERSION, ORLO_DATE, ORLO_TIME);
    std::fputs(credits, stream);
}

int fail_with_usage()
{
    print_usage(stderr);
    return 1;
}

// option-name -> rest of the argument | next argument
// next is the index of the argument after the option, moved on when it is taken
int take_name(const char *&name, const char *rest, int argc, const char *const *argv, int &next, const char *what)
{
    if (*rest != '\0') {
        name = rest;
        return 0;
    }
    if (next >= argc || argv[next][0] == '-') {
        std::printf("\nError: No %s name\n\n", what);
        return 1;
    }
    name = argv[next++];
    return 0;
}

// option -> "-" letter [ name ]
int take_option(const char *option, int argc, const char *const *argv, int &next)
{
    for (const Option &row : option_table) {
        if (row.letter != option[1])
            continue;
        *row.on = true;
        return row.name != nullptr ? take_name(*row.name, option + 2, argc, argv, next, row.missing) : 0;
    }
    return fail_with_usage();
}

// An input that is not there clashes with nothing: that it can't be opened is told later.
bool clashes_with_input(const char *name) { return std::strcmp(name, in_fname) == 0 || same_file(name, in_fname); }

bool clash(const char *a, const char *b) { return std::strcmp(a, b) == 0 || same_file(a, b) || same_new_file(a, b); }

} // namespace

int get_options(int argc, const char *const *argv)
{
    for (int next = 1; next < argc;) { // each round takes an argument
        const char *argument = argv[next];
        if (argument[0] != '-') {
            if (next != argc - 2)
                return fail_with_usage();
            in_fname  = argument;
            out_fname = argv[next + 1];
            return 0;
        }
        ++next;
        if (take_option(argument, argc, argv, next) != 0)
            return 1;
    }
    return fail_with_usage();
}

int check_fnames()
{
    const char *outputs[MOST_OUTPUTS] = {out_fname, MKLOG ? log_fname : nullptr, MKEXP ? exp_fname : nullptr};
    bool        found                 = false;
    for (int i = 0; i < MOST_OUTPUTS; ++i) {
        if (outputs[i] == nullptr)
            continue;
        found = found || clashes_with_input(outputs[i]);
        for (int j = 0; j < i; ++j)
            found = found || (outputs[j] != nullptr && clash(outputs[i], outputs[j]));
    }
    if (!found)
        return 0;
    std::fputs("\nERROR: You can't use a filename multiple times!\n\n", stderr);
    return 1;
}

void print_usage(std::FILE *stream)
{
    print_version(stream);
    std::fputs("  Usage: orlo [options] infile outfile\n  Options:\n", stream);
    for (const Option &row : option_table)
        std::fprintf(stream, "  -%c %-9s  %s\n", row.letter, row.value, row.meaning);
    std::fputs("\n", stream);
}

void print_info(std::FILE *stream)
{
    print_version(stream);
    print(stream, "\n\nInput\t= \"%s\"\nOutput\t= \"%s\" ", in_fname, out_fname);
    std::fputs(MKMIDI ? "[MIDI file (type 1)]\n" : "[Csound score-file]\n", stream);
    if (MKLOG)
        print(stream, "Log \t= \"%s\"\n", log_fname);
    if (MKEXP)
        print(stream, "MExp\t= \"%s\"\n", exp_fname);
}

void reset_options()
{
    in_fname  = nullptr;
    out_fname = nullptr;
    log_fname = nullptr;
    exp_fname = nullptr;
}

} // namespace orlo
