// Class ids of the activation tests' server. The object class is registered at build time; the
// others are registered by the tests themselves.
#pragma once

#include <vcomrt/com.h>

// {5B0C6D1E-2F3A-4B5C-8D9E-0F1A2B3C4D5E}
static const CLSID CLSID_VComRtTestObject = {0x5B0C6D1E, 0x2F3A, 0x4B5C, {0x8D, 0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}};
// {5B0C6D1E-2F3A-4B5C-8D9E-0F1A2B3C4D5F}
static const CLSID CLSID_VComRtThrowingObject = {0x5B0C6D1E, 0x2F3A, 0x4B5C, {0x8D, 0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x5F}};
// {5B0C6D1E-2F3A-4B5C-8D9E-0F1A2B3C4D60}: registered against the server, which does not serve it.
static const CLSID CLSID_VComRtUnservedObject = {0x5B0C6D1E, 0x2F3A, 0x4B5C, {0x8D, 0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x60}};
