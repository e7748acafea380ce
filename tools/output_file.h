// A file that appears under its name only when it is whole.
#pragma once

#include <string>

// Output is written under a temporary name in the same folder, hidden and without the extension of
// a sound file. An existing device is written to directly.
class OutputFile {
public:
    // An existing path is refused unless overwrite. Error() tells why the output cannot be made;
    // empty when it can.
    OutputFile(const std::string& path, bool overwrite);
    ~OutputFile();  // takes away what was not committed
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& Error() const { return error_; }
    const std::string& WritePath() const { return writePath_; }  // for whoever writes
    bool IsDevice() const { return isDevice_; }
    long long Size() const;  // bytes written so far, -1 when there is nothing

    // Gives the file its name; every writer has closed it. Why that failed, or empty.
    std::string Commit();

private:
    std::string finalPath_;
    std::string writePath_;
    std::string error_;
    bool overwrite_;
    bool isDevice_ = false;
    bool isTemporary_ = false;
};
