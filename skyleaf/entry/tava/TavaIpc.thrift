// What the add-on sends to the cloud service process in a generic call.
namespace cpp vlt.tava

struct TavaIpcArg {
  1: required string nameSpace,
  2: required string method,
  3: required map<string, string> argMap
}
