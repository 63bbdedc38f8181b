/// @file
/// Every public header of keel, in one include.
///
/// Hosts include it as `#include <keel/keel.h>` (or include the single headers
/// they need, as <keel/NAME.h>), compile with the installed `include`
/// directory on the include path and link libkeel.  It declares nothing of
/// its own; it costs only compile time.  It brings keel_version.h along
/// (KEEL_VERSION_MAJOR, KEEL_VERSION_MINOR, KEEL_VERSION_PATCH, KEEL_VERSION_STRING).
#ifndef KEEL_H
#define KEEL_H

#include "keel_config.h"
#include <keel/keel_version.h>

#include "SYS_CodePage.h"
#include "SYS_String.h"
#include "SYS_Scan.h"
#include "SYS_StrPattern.h"

#include "SYS_Exception.h"
#include "SYS_Resource.h"

#include "SCC_Event.h"
#include "SSM_Assert.h"
#include "SSM.h"

#include "SCC_Shared.h"
#include "SCC_Array.h"
#include "SCC_SortableArray.h"
#include "SCC_List.h"
#include "SCC_Hash.h"

#include "SYS_StdInterface.h"
#include "SCC_Variant.h"
#include "SCC_Handle.h"
#include "SCC_StdCollection.h"
#include "SCC_Property.h"

#include "SYS_Geom.h"
#include "SYS_Curve.h"
#include "SYS_Transform.h"
#include "SYS_GeomChain.h"
#include "SYS_Text.h"

#include "SYS_Convert.h"

#include "SFM_FilePath.h"
#include "SFM.h"
#include "SFM_File.h"
#include "SFM_MessageDB.h"

#include "UI_DrawArea.h"
#include "UI_Dynamic.h"
#include "UI_PaletteColorConvertor.h"

#endif // KEEL_H
