#pragma once

#include "qvcore/Thread.h"

#include <atomic>
#include <filesystem>
#include <string>

namespace support {

/// A folder of a test's own, gone with the object.
class TestFolder {
public:
    explicit TestFolder(
        const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        static std::atomic<int> number = 0;
        path_ = parent /
                ("qvcl-test-" + std::to_string(QVThreadGetID()) + "-" + std::to_string(++number));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directory(path_);
    }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    /// Where files lie in memory, if the system has such a place: for tests that have the system
    /// write through to the disk very often.
    static std::filesystem::path fastParent() {
        const std::filesystem::path memory = "/dev/shm";
        return std::filesystem::is_directory(memory) ? memory
                                                     : std::filesystem::temp_directory_path();
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// The path of something in the folder, in the library's text form.
    std::u16string file(const std::u16string& name) const {
        std::u16string text = path_.u16string() + u"\\" + name;
        for (char16_t& unit : text) {
            unit = unit == u'/' ? u'\\' : unit;
        }
        return text;
    }

private:
    std::filesystem::path path_;
};

} // namespace support
