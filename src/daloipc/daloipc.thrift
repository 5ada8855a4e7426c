// The drive service's result records and the frames between the IPC library and the service.
namespace cpp zyl.dalo

enum DaloResultCode {
  Succeeded = 0,
  FailedOnIpc = 1,
  FailedOnNotLogined = 2,
  FailedOnRpc = 3,
  FailedOnInvalidParameters = 4,
  FailedOnAccountChanged = 5,
  FailedOnFileLocking = 6,
  FailedOnJsonException = 7,
  FailedOnMethodNoFound = 8,
  FailedOnDaloInternalError = 9,
}

struct UploadFilesToCloudResult {
  1: required i32 resultCode = 1,
  // Where each source landed, as cloud paths, in the order of srcFiles.
  2: list<string> cloudFiles,
}

struct OpenVirtualCloudDiskResult {
  1: required i32 resultCode = 1,
  // The drive folder as a local path.
  2: string localFolder,
}

struct GetCloudFileCachePathResult {
  1: required i32 resultCode = 1,
  // A local folder with current copies of the cloud folder's files; empty on failure.
  2: string cacheFolder,
}

// One request: the method, the argument record's type name and the record in the binary protocol.
struct DaloRequestFrame {
  1: required string requestId,
  2: required string method,
  3: required string recordType,
  4: required binary record,
}

// The answer to one request. result holds the method's result record in the binary protocol;
// it is empty when the request could not be read, and resultCode then says why.
struct DaloReplyFrame {
  1: required string requestId,
  2: required i32 resultCode,
  3: required binary result,
}
