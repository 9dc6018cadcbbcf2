// BIO: binary and text matrix files and name lists.
#include <aimhue/bio.h>

#include <aimhue/plume_log.h>

#include <istream>
#include <streambuf>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/file_stream.h"
#include "capture/matrix_block.h"
#include "common/exception_guard.h"

namespace aimhue {
namespace BIO {
namespace {

// An input stream buffer over bytes already in memory, so that a text file
// read whole is parsed with the standard formatted input without a copy.
class MemoryBuffer : public std::streambuf {
 public:
  explicit MemoryBuffer(std::string& bytes) {
    char* begin = bytes.data();
    setg(begin, begin, begin + bytes.size());
  }
};

bool SaveMatrixFile(const std::string& fullname, const cv::Mat& mat) {
  FileSink file;
  if (!file.Open(fullname)) {
    LogOpenFailure("BIO::SaveMatToBin", fullname);
    return false;
  }
  ByteWriter out(file);
  out.WriteU8(static_cast<uint8_t>(kByteOrderMark));
  WriteMatrixBlock(mat, out);
  file.Close();  // write errors are not reported, as for every format's Save
  return true;
}

bool LoadMatrixFile(const std::string& fullname, cv::Mat& mat) {
  FileSource file;
  if (!file.Open(fullname)) {
    LogOpenFailure("BIO::LoadBinToMat", fullname);
    return false;
  }
  ByteReader in(file, file.Size());
  uint8_t mark = 0;
  if (!in.ReadU8(mark) || mark != static_cast<uint8_t>(kByteOrderMark)) return true;
  cv::Mat loaded;
  if (!ReadMatrixBlock(in, loaded)) {
    DataError("BIO::LoadBinToMat");
    return true;
  }
  mat = loaded;
  return true;
}

bool LoadTextMatrix(const std::string& fullname, const int size[2], cv::Mat& mat) {
  if (size == nullptr || size[0] < 1 || size[1] < 1) {
    PlumeLogError("BIO::LoadTxtToMat--Error :: invalid size.");
    return false;
  }
  std::string content;
  if (!ReadWholeFile(fullname, content)) {
    LogOpenFailure("BIO::LoadTxtToMat", fullname);
    return false;
  }
  MemoryBuffer buffer(content);
  std::istream text(&buffer);
  const int width = size[0];
  const int height = size[1];
  cv::Mat values = cv::Mat::zeros(height, width, CV_32FC1);
  for (int row = 0; row < height && text; ++row) {
    float* line = values.ptr<float>(row);
    for (int col = 0; col < width; ++col) {
      float value = 0.0f;
      if (!(text >> value)) break;
      line[col] = value;
    }
  }
  mat = values;
  return true;
}

bool ReadNameList(const std::string& fullname, std::vector<std::string>& names) {
  std::string content;
  if (!ReadWholeFile(fullname, content)) {
    LogOpenFailure("BIO::ReadFullNameListTxt", fullname);
    return false;
  }
  // Every line end closes a name; text after the last line end is a name too.
  std::vector<std::string> read;
  size_t start = 0;
  while (start < content.size()) {
    size_t end = content.find('\n', start);
    if (end == std::string::npos) end = content.size();
    read.emplace_back(content, start, end - start);
    start = end + 1;
  }
  names.insert(names.end(), std::make_move_iterator(read.begin()),
               std::make_move_iterator(read.end()));
  return true;
}

}  // namespace

bool SaveMatToBin(const std::string& fullname, const cv::Mat& mat) {
  PlumeLogInfo("BIO::SaveMatToBin");
  return GuardExceptionsOr("BIO::SaveMatToBin", false,
                           [&] { return SaveMatrixFile(fullname, mat); });
}

bool LoadBinToMat(const std::string& fullname, cv::Mat& mat) {
  PlumeLogInfo("BIO::LoadBinToMat");
  return GuardExceptionsOr("BIO::LoadBinToMat", false,
                           [&] { return LoadMatrixFile(fullname, mat); });
}

bool LoadTxtToMat(const std::string& fullname, const int size[2], cv::Mat& mat) {
  PlumeLogInfo("BIO::LoadTxtToMat");
  return GuardExceptionsOr("BIO::LoadTxtToMat", false,
                           [&] { return LoadTextMatrix(fullname, size, mat); });
}

bool ReadFullNameListTxt(const std::string& fullname, std::vector<std::string>& names) {
  PlumeLogInfo("BIO::ReadFullNameListTxt");
  return GuardExceptionsOr("BIO::ReadFullNameListTxt", false,
                           [&] { return ReadNameList(fullname, names); });
}

}  // namespace BIO
}  // namespace aimhue
