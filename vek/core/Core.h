#pragma once

// Every class of the core runtime.
#include <vek/core/BaseObject.h>
#include <vek/core/ByteArray.h>
#include <vek/core/CArray.h>
#include <vek/core/CByteArray.h>
#include <vek/core/CDependencyObject.h>
#include <vek/core/CDictionary.h>
#include <vek/core/CEnumerator.h>
#include <vek/core/CFloatArray.h>
#include <vek/core/CharClass.h>
#include <vek/core/CLeaks.h>
#include <vek/core/CList.h>
#include <vek/core/CLock.h>
#include <vek/core/CObject.h>
#include <vek/core/CPoolBase.h>
#include <vek/core/CPoolObject.h>
#include <vek/core/CQueue.h>
#include <vek/core/CString.h>
#include <vek/core/CValue.h>
#include <vek/core/CValueList.h>
#include <vek/core/Guid.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/core/RObject.h>
#include <vek/core/String.h>
#include <vek/core/Types.h>
