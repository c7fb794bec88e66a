// Gradient noise from one gather, with and without its slope.

const float noiseGain = 5.6;

struct Cell {
    vec2 inCell;
    vec2 weight;
    vec4 gradientX;  // of the corners (0, 0), (1, 0), (0, 1), (1, 1)
    vec4 gradientY;
    vec4 planes;  // the height of each corner's slanted plane
};

// `position` in cells.
Cell cellAt(vec2 position) {
    vec2 corner = floor(position);
    vec2 f = position - corner;
    vec2 g = f - 1.0;
    vec4 v = textureGather(sampler2D(noiseTexture, repeatingSampler), (corner + 1.0) * (1.0 / 256.0), 0).wzxy;
    vec4 a = abs(v);
    vec4 b = 0.5 - a;
    vec4 gradientX = b - b * abs(b);  // cosine and sine of pi v as parabolas
    vec4 gradientY = v - v * a;
    vec2 weight = f * f * f * (f * (f * 6.0 - 15.0) + 10.0);
    vec4 planes = gradientX * vec4(f.x, g.x, f.x, g.x) + gradientY * vec4(f.y, f.y, g.y, g.y);
    return Cell(f, weight, gradientX, gradientY, planes);
}

float noiseAt(vec2 position) {
    Cell cell = cellAt(position);
    vec2 rows = mix(cell.planes.xz, cell.planes.yw, cell.weight.x);
    return mix(rows.x, rows.y, cell.weight.y) * noiseGain;
}

// The value and its slope by x and y.
vec3 noiseAndSlopeAt(vec2 position) {
    Cell cell = cellAt(position);
    vec2 q = cell.inCell * (cell.inCell - 1.0);
    vec2 weightSlope = 30.0 * q * q;
    vec2 rows = mix(cell.planes.xz, cell.planes.yw, cell.weight.x);
    vec2 across = cell.planes.yw - cell.planes.xz;
    vec2 slopeX = mix(cell.gradientX.xz, cell.gradientX.yw, cell.weight.x);
    vec2 slopeY = mix(cell.gradientY.xz, cell.gradientY.yw, cell.weight.x);
    return noiseGain * vec3(mix(rows.x, rows.y, cell.weight.y),
                            mix(slopeX.x, slopeX.y, cell.weight.y) +
                                weightSlope.x * mix(across.x, across.y, cell.weight.y),
                            mix(slopeY.x, slopeY.y, cell.weight.y) + weightSlope.y * (rows.y - rows.x));
}
