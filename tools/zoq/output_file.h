// A file that appears complete or not at all.
//
// Everything goes to a file beside the final name, which is renamed at the end: a failure, a full disk or a
// signal leaves an existing file as it was and no remains. "-" is standard output, fed from memory at the
// end.
#pragma once

#include <string>

#include "tools/zoq/descriptor.h"

namespace zoq {

class OutputFile {
  public:
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    int fd() const { return file_.get(); }
    const std::string& name() const { return name_; }  // as messages call it

    // The file takes its final name; nothing may be written afterwards.
    void commit();

  private:
    std::string name_;
    std::string path_;       // what is to be replaced, links followed; empty for standard output
    std::string temporary_;  // empty when there is nothing to remove
    Descriptor file_;
};

}  // namespace zoq
