#pragma once
// Output files are written whole or not at all.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tervalo {

// Writes each line followed by CR LF to a temporary file in the target's
// folder and renames it over the target when complete, so a failed write
// leaves any earlier file untouched. A file that cannot be written is a
// RunTimeError naming the file and the reason.
void writeTextFile(const std::filesystem::path& file, const std::vector<std::string>& lines);

// The same for a file that a library writes by name: `write` writes the
// temporary file it is given and returns whether it wrote it completely;
// only then does it replace the target. Anything it throws, or false, leaves
// the target untouched.
void writeFileWith(const std::filesystem::path& file, const std::function<bool(const std::filesystem::path&)>& write);

}  // namespace tervalo
