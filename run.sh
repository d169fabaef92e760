#!/usr/bin/env bash
# Sets up, builds, and renders the example job through worker, plug-in and host.
# Usage: ./run.sh [--full] [WORKER OPTION...]
#   --full   renders examples/full-job.json (render elements, previews, local rendering, black-frame check, scripts) and
#            examples/region-job.json (a region through a multipass camera)
set -euo pipefail
cd "$(dirname "$0")"

full=
if [ "${1:-}" = --full ]; then full=1; shift; fi

./setup.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target standin-host corvantis tessaryn-worker

worker=build/release/bin/tessaryn-worker
echo
if [ -n "$full" ]; then
  "$worker" run examples/full-job.json "$@"
  "$worker" run examples/region-job.json "$@"
  pictures=out/full
else
  "$worker" render examples/orrery.gltf --frames 1-24 --output out/orrery/beauty.exr --jpeg out/orrery/preview \
    --set IgnoreRenderElements "$@"
  pictures=out/orrery
fi

echo
echo "The pictures are in $PWD/$pictures (EXR) and $PWD/$pictures/preview (JPEG previews)."
