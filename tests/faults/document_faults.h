#pragma once

/// Makes the methods of the document service that the agent uses count as calls of COM, for the rest of the
/// process. Returns their number, or 0 if the service is not to be had.
int InstallDocumentFaults();

/// Headers that the service has made since then.
long HeadersMade();

/// Has the service make a document with a header, as the agent does, and lets both go.
void MakeHeader();
