// Argument records of the three cloud requests.
namespace cpp zyl.dalo

struct GetCloudFileCachePathArg {
  1: required string userId = "",
  2: required string cloudPath = "",
  3: map<string, string> extraParam,
}

struct OpenVirtualCloudDiskArg {
  1: required string userId = "",
  2: required string openFrom = "",
  3: required string fileId = "",
  4: required string cloudPath = "",
  5: required bool createWhenNoExists = true,
  6: string entryIdentifier,
  7: map<string, string> extraParam,
}

struct UploadFilesToCloudArg {
  1: required string userId = "",
  2: required string cloudPath = "",
  3: required list<string> srcFiles,
  4: required bool createWhenNoExists = true,
  5: required string userData = "",
  6: required string uploadFrom = "",
  7: map<string, string> extraParam,
}
