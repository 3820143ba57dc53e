#pragma once

namespace lvx::cli {

/// What lvxhost ends with; scripts and job files read these.
enum ExitCode : int {
  kDone = 0,            ///< everything asked for was written
  kNotWritten = 1,      ///< something asked for was not written, said on standard error
  kUsage = 2,           ///< the command line can't be understood
  kBadDrawing = 3,      ///< the drawing can't be read or saved
  kUnknownName = 4,     ///< a name isn't in the drawing, or doesn't say which object is meant
  kScriptMismatch = 5,  ///< a script doesn't fit what the command waits for
  kException = 70,      ///< the command ended by an exception
  kInterrupted = 130,   ///< stopped by the user
};

}  // namespace lvx::cli
