#pragma once
// The core library: ROM byte access, cartridge header, text codec and INI access.
#include <quillon/errors.h>
#include <quillon/rom.h>
#include <quillon/header.h>
#include <quillon/codec.h>
#include <quillon/inifile.h>
