// The one place that defines the identifiers of MAPI's interfaces; the platform's libraries bring only some
// of them. The published header defines what was asked for by name.

#include <windows.h>

#define USES_IID_IAttachment
#define USES_IID_IMAPIContainer
#define USES_IID_IMAPIFolder
#define USES_IID_IMAPIProp
#define USES_IID_IMAPISession
#define USES_IID_IMAPITable
#define USES_IID_IMessage
#define USES_IID_IMsgStore
#define USES_IID_IProfAdmin
#define USES_PS_MAPI

#include <initguid.h>

#include <mapiguid.h>
