// What the module exports as a plug-in. No exception leaves these; the first two are declared as the platform declares
// them, without saying so.
#pragma once

#include "platform/base.h"

// A factory for any class id; it is IClassFactory::CreateInstance that tells them apart. `class_id` must outlive the
// factory. E_NOINTERFACE for an interface other than IClassFactory and IUnknown, E_OUTOFMEMORY, or E_UNEXPECTED when
// the module could not be attached to the process. Any thread.
KT_API HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID class_id, REFIID id, void** out);
// Always S_FALSE: the module stays until the process ends.
KT_API HRESULT STDMETHODCALLTYPE DllCanUnloadNow();
// Does nothing.
KT_API void STDMETHODCALLTYPE DllInitClasses() noexcept;
