// The six global workspaces of the program, one per data kind.
#pragma once
#include "field/cloud.h"
#include "field/imagefield.h"
#include "field/mesh.h"
#include "field/scalarfield.h"
#include "field/tensorfield.h"
#include "field/vectorfield.h"
#include "field/workspace.h"

extern tworkspacelist<timagefield> imageworkspace;
extern tworkspacelist<tscalarfield> scalarworkspace;
extern tworkspacelist<tvectorfield> vectorworkspace;
extern tworkspacelist<ttensorfield> tensorworkspace;
extern tworkspacelist<tmesh> meshworkspace;
extern tworkspacelist<tcloud> lineworkspace;

void createworkspaces();   // image, scalar, vector, tensor, mesh, line
void releaseworkspaces();  // in the reverse order
void resetworkspaces();    // clean, clear, new
void dumpworkspaces();     // dump
