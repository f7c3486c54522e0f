#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need; only what is missing.
set -euo pipefail
# FreeImage and MagickWand are optional at run time; the tests use both, and Pillow, netpbm,
# pngcheck and tiffinfo as independent readers and writers of raster files; nibabel, numpy and
# nifti_tool those of NIfTI volumes; scipy is the peer of the filter benchmark; xmllint,
# rsvg-convert and Ghostscript read the charts; vtk, meshio, ezdxf and assimp read and write
# meshes and our line files, scikit-image is the peer of the surface benchmark, dipy that
# of the streamline benchmark; teem's unu reads our tensor NRRD files.
packages=(build-essential cmake ninja-build zlib1g-dev libgtest-dev libbenchmark-dev python3 clang
          libclang-rt-14-dev libfreeimage3
          libmagickwand-6.q16-6 python3-pil netpbm pngcheck libtiff-tools
          python3-numpy python3-nibabel nifti-bin libdeflate-dev python3-scipy python3-skimage
          librsvg2-bin libxml2-utils ghostscript python3-matplotlib tcl python3-dipy
          python3-vtk9 python3-meshio python3-ezdxf assimp-utils teem-apps)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
