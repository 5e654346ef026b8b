#pragma once

// The OLE conversions of CString and CByteArray exist in the Windows build
// only. Their declarations enter the class through these macros (empty
// elsewhere); their definitions live in win32/OleMembers.cpp.
#if defined(_WIN32)
struct tagSAFEARRAY;
// BSTR text the caller frees with SysFreeString.
#  define VEK_CSTRING_OLE_MEMBERS                                                  \
      wchar_t* ToBSTR();                                                           \
      static wchar_t* ToBSTR(const char* text);
// A one-dimensional VT_UI1 safe array the caller frees with SafeArrayDestroy.
#  define VEK_CBYTEARRAY_OLE_MEMBERS tagSAFEARRAY* ToSAFEARRAY();
#else
#  define VEK_CSTRING_OLE_MEMBERS
#  define VEK_CBYTEARRAY_OLE_MEMBERS
#endif
