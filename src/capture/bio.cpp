// BIO: binary and text matrix files and name lists.
#include <aimhue/bio.h>

#include <aimhue/plume_log.h>

#include <fstream>

#include "capture/byte_stream.h"
#include "capture/file_format.h"
#include "capture/file_stream.h"
#include "capture/matrix_block.h"

namespace aimhue {
namespace BIO {

bool SaveMatToBin(const std::string& fullname, const cv::Mat& mat) {
  PlumeLogInfo("BIO::SaveMatToBin");
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

bool LoadBinToMat(const std::string& fullname, cv::Mat& mat) {
  PlumeLogInfo("BIO::LoadBinToMat");
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

bool LoadTxtToMat(const std::string& fullname, const int size[2], cv::Mat& mat) {
  PlumeLogInfo("BIO::LoadTxtToMat");
  if (size == nullptr || size[0] < 1 || size[1] < 1) {
    PlumeLogError("BIO::LoadTxtToMat--Error :: invalid size.");
    return false;
  }
  std::ifstream file(fullname);
  if (!file) {
    LogOpenFailure("BIO::LoadTxtToMat", fullname);
    return false;
  }
  const int width = size[0];
  const int height = size[1];
  cv::Mat values = cv::Mat::zeros(height, width, CV_32FC1);
  for (int row = 0; row < height && file; ++row) {
    float* line = values.ptr<float>(row);
    for (int col = 0; col < width; ++col) {
      float value = 0.0f;
      if (!(file >> value)) break;
      line[col] = value;
    }
  }
  mat = values;
  return true;
}

bool ReadFullNameListTxt(const std::string& fullname, std::vector<std::string>& names) {
  PlumeLogInfo("BIO::ReadFullNameListTxt");
  std::ifstream file(fullname);
  if (!file) {
    LogOpenFailure("BIO::ReadFullNameListTxt", fullname);
    return false;
  }
  std::string line;
  while (std::getline(file, line)) names.push_back(line);
  return true;
}

}  // namespace BIO
}  // namespace aimhue
