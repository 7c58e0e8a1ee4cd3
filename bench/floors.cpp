// The least that the work of a run takes without the program: what orlo's times are compared with.
//
//   floors print ARRAYS SCORE   prints a score of four columns from arrays with fprintf
//   floors write TEXT COPY      only writes the bytes of a text
//   floors copy TEXT COPY       copies a text twice, as the include pass and the line reader do, with fgets and fputs
//   floors trace ARRAYS         prints the lines of the MIDI trace to the standard error stream with fprintf, buffered
//
// ARRAYS is a file of 32-bit floats, one column behind the other.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t SCORE_COLUMNS = 4; // start, duration, p4, p5
constexpr std::size_t TRACE_COLUMNS = 5; // start, duration, 1 for a note-on, key, velocity
constexpr std::size_t LINE_SIZE     = 2048;

[[noreturn]] void fail(const char *name)
{
    std::perror(name);
    std::exit(1);
}

std::FILE *open(const char *name, const char *mode)
{
    std::FILE *file = std::fopen(name, mode);
    if (file == nullptr)
        fail(name);
    return file;
}

void close(std::FILE *file, const char *name)
{
    const bool lost = std::ferror(file) != 0;
    if (std::fclose(file) != 0 || lost)
        fail(name);
}

std::size_t size_of(int file, const char *name)
{
    struct stat status {};
    if (fstat(file, &status) != 0)
        fail(name);
    return static_cast<std::size_t>(status.st_size);
}

// Columns of equal length.
struct Arrays {
    std::vector<float> values;
    std::size_t        rows;

    double at(std::size_t column, std::size_t row) const { return static_cast<double>(values[column * rows + row]); }
};

Arrays read_arrays(const char *name, std::size_t columns)
{
    std::FILE *file = open(name, "rb");
    Arrays     arrays{};
    arrays.values.resize(size_of(fileno(file), name) / sizeof(float));
    arrays.rows = arrays.values.size() / columns;
    if (std::fread(arrays.values.data(), sizeof(float), arrays.values.size(), file) != arrays.values.size())
        fail(name);
    std::fclose(file);
    return arrays;
}

void print_score(const char *arrays_name, const char *score_name)
{
    const Arrays arrays = read_arrays(arrays_name, SCORE_COLUMNS);
    std::FILE   *out    = open(score_name, "w");
    std::fprintf(out, "\n;I-block #%u (i%d):", 1U, 1);
    for (std::size_t i = 0; i < arrays.rows; ++i)
        std::fprintf(out, "\ni%d %8.3f %6.3f %9.3f %9.3f ", 1, arrays.at(0, i), arrays.at(1, i), arrays.at(2, i), arrays.at(3, i));
    std::fputs("\n\ne\n", out);
    close(out, score_name);
}

void write_bytes(const char *text_name, const char *copy_name)
{
    const int in = ::open(text_name, O_RDONLY | O_CLOEXEC);
    if (in < 0)
        fail(text_name);
    const std::size_t size = size_of(in, text_name);
    void             *text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, in, 0);
    if (text == MAP_FAILED)
        fail(text_name);
    std::FILE *out = open(copy_name, "w");
    std::fwrite(text, 1, size, out);
    close(out, copy_name);
}

void copy_lines(const char *text_name, const char *copy_name)
{
    std::FILE *in  = open(text_name, "r");
    std::FILE *out = open(copy_name, "w");
    char       line[LINE_SIZE];
    while (std::fgets(line, sizeof line, in) != nullptr)
        std::fputs(line, out);
    std::fclose(in);
    close(out, copy_name);
}

void copy_twice(const char *text_name, const char *copy_name)
{
    const std::string between = std::string{copy_name} + ".tmp";
    copy_lines(text_name, between.c_str());
    copy_lines(between.c_str(), copy_name);
    std::remove(between.c_str());
}

void print_trace(const char *arrays_name)
{
    const Arrays arrays = read_arrays(arrays_name, TRACE_COLUMNS);
    std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
    for (std::size_t i = 0; i < arrays.rows; ++i)
        std::fprintf(stderr, "\n%7.2f\t%7.2f\t%s\tN: %7.2f\tV: %7.2f\t", arrays.at(0, i), arrays.at(1, i),
                     arrays.at(2, i) == 1.0 ? "ON" : "OFF", arrays.at(3, i), arrays.at(4, i));
}

} // namespace

int main(int argc, char **argv)
{
    const auto asked = [&](const char *name, int names) { return argc == names + 2 && std::strcmp(argv[1], name) == 0; };
    if (asked("print", 2))
        print_score(argv[2], argv[3]);
    else if (asked("write", 2))
        write_bytes(argv[2], argv[3]);
    else if (asked("copy", 2))
        copy_twice(argv[2], argv[3]);
    else if (asked("trace", 1))
        print_trace(argv[2]);
    else
        return 2;
    return 0;
}
