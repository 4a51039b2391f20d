#include "Output.h"

#include "qv/io/FileOutputStream.h"

namespace tool {

Output::Output()
    : writer_(qv::make<qv::io::PrintWriter>(
          qv::make<qv::io::OutputStreamWriter>(qv::io::FileOutputStream::standardOutput()))) {}

} // namespace tool
