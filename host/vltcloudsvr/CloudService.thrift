// The cloud service process on its local socket (framed, binary protocol).
//
// A call carries who asks for whom, so that the service keeps no session: a change of the user cannot reach a call
// that was made before it. Calls of one connection are answered in order; a client that must not wait behind a long
// call opens another connection.
include "tava/TavaIpc.thrift"

namespace cpp vlt.cloudsvr.rpc

struct Caller {
  1: string userId,              // empty: nobody is signed in
  2: string localDataDir,        // of the user's packages; absolute
  3: string apiUrl,              // of the documents service; empty: none
  4: map<string, string> resolve, // "host" or "host:port" to "address:port"
  5: string cookies              // of the user's session, "name=value; ..."; never stored
}

struct CallResult {
  1: i32 code, // see common/Calls.h
  2: map<string, string> values
}

struct ServiceEvent {
  1: i64 id, // counts from 1 in every process
  2: string name,
  3: map<string, string> values
}

service CloudService {
  void ping(),
  CallResult call(1: Caller caller, 2: string functionName, 3: map<string, string> arguments),
  CallResult tavaIpcCall(1: Caller caller, 2: TavaIpc.TavaIpcArg argument),
  // What happened after the event `sinceId`; waits up to `waitMs` for something to happen. A new process counts
  // anew, so a client starts at 0 with every connection.
  list<ServiceEvent> nextEvents(1: i64 sinceId, 2: i32 waitMs)
}
