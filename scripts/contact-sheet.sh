#!/bin/bash
# Draws docs/contact-sheet.jpg: models of many formats in several modes and views, from the packaged test models and examples/models.
set -euo pipefail
cd "$(dirname "$0")/.."

packaged=/usr/share/assimp/models
scripts/build.sh release zel zel-io-assimp sheet
tiles=$(mktemp -d)
trap 'rm -rf "$tiles"' EXIT

number=10
while read -r model options; do
    number=$((number + 1))
    # shellcheck disable=SC2086  # a list of options
    build/release/bin/zel render --size 256x192 --antialias 4 $options "$model" "$tiles/$number.png"
done <<LIST
examples/models/pavilion.dae
$packaged/Collada/duck.dae
$packaged/glTF/CesiumMilkTruck/CesiumMilkTruck.gltf --view ltb --angle 25
$packaged/OBJ/spider.obj --view ltb
$packaged/MD2/sydney.md2 --view right
$packaged/MS3D/jeep1.ms3d
$packaged/IFC/AC14-FZK-Haus.ifc
$packaged/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb
$packaged/OBJ/WusonOBJ.obj --mode wireframe
$packaged/IQM/mrfixit.iqm
$packaged/3DS/cubes_with_alpha.3DS --mode smooth-wire
$packaged/SIB/heffalump.sib
$packaged/Ogre/TheThing/Mesh.mesh.xml
$packaged/Q3D/earth.q3o --background black
$packaged/Collada/kwxport_test_vcolors.dae
$packaged/LWO/LWO2/transparency.lwo
$packaged/FBX/spider.fbx --mode flat-wire
$packaged/BLEND/TorusLightsCams_250_compressed.blend --mode smooth-wire
$packaged/OBJ/cube_with_vertexcolors.obj --labels --boxes
$packaged/MD2/faerie.md2 --view right
LIST
build/release/bin/sheet docs/contact-sheet.jpg 5 "$tiles"/*.png
echo "docs/contact-sheet.jpg: $(stat -c %s docs/contact-sheet.jpg) bytes"
