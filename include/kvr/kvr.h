#pragma once
// Runtime KVR: everything a host application uses.
#include <kvr/error.h>
#include <kvr/numeros.h>
#include <kvr/fechas.h>
#include <kvr/servicios.h>
#include <kvr/tags.h>
#include <kvr/valores.h>
#include <kvr/campos.h>
#include <kvr/escala.h>
#include <kvr/layout.h>
#include <kvr/comunes.h>
#include <kvr/utilidades.h>
#include <kvr/rtimekvr.h>
#include <kvr/motorcalculadora.h>
#include <kvr/rtf.h>
#include <kvr/rtfdocumento.h>
#include <kvr/minihelp.h>
