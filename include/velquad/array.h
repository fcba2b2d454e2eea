/// @file
/// Typed images and volumes: conversion, regions, zoom, affine transform, blur.
#ifndef VELQUAD_ARRAY_H
#define VELQUAD_ARRAY_H

#include "velquad/platform.h"
#include "velquad/types.h"

#endif  // VELQUAD_ARRAY_H
