// What the tests share that look at a run: a text that is run as a piece while the collector looks.
#pragma once

#include "base/observer.h"
#include "driver/run.h"
#include "gather/collector.h"
#include "platform/screen.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace orlo::test {

/// A folder of its own, which goes with it.
class Folder {
  public:
    Folder()
    {
        std::string name = std::filesystem::temp_directory_path() / "orlo-unit-XXXXXX";
        EXPECT_NE(nullptr, mkdtemp(name.data()));
        path = name;
    }
    ~Folder() { std::filesystem::remove_all(path); }
    Folder(const Folder &)            = delete;
    Folder &operator=(const Folder &) = delete;

    std::string at(std::string_view name) const { return path / name; }

    std::string write(std::string_view name, std::string_view text) const
    {
        std::ofstream{at(name), std::ios::binary} << text;
        return at(name);
    }

  private:
    std::filesystem::path path;
};

/// Runs a file as a piece. @return the status that orlo would have
inline int explain(const std::string &name, gather::Piece &piece, gather::Detail detail = gather::Detail::summary)
{
    gather::start_collecting(piece, detail);
    observer         = &gather::collecting_observer(detail);
    const int status = explain_run(name.c_str(), false, {0, WHOLE_FILE});
    observer         = nullptr;
    show_screen(true); // tests may share a process
    if (!gather::end_collecting())
        throw std::bad_alloc{};
    return status;
}

} // namespace orlo::test
