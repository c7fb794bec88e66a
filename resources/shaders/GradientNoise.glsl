// Gradient noise with its exact slope, grown from a small repeating texture of random numbers, or from a hash.
// The including shader declares `noiseTexture` (256 x 256, signed) and `repeatingSampler`.

const float noiseTexelsPerSide = 256.0;

// Brings the noise to about -1 to 1: 1.4 for gradient noise of unit gradients, times the 4 that `latticeCosine` and
// `latticeSine` leave out.
const float noiseGain = 1.4 * 4.0;

struct Noise {
    float value;  // about -1 to 1
    vec2 slope;   // change of the value per cell
};

// The random numbers of the texture at a cell's four corners, in the order (0, 0), (1, 0), (0, 1), (1, 1).
// Gathered at the point where the four texels meet: the values come exact, with no filter weights in between (those
// have 8 bits on most devices, which shows as steps in the relief), and no rounding can pick a neighbour.
vec4 textureNumbers(vec2 cell) {
    vec2 meetingPoint = (cell + 1.0) / noiseTexelsPerSide;
    return textureGather(sampler2D(noiseTexture, repeatingSampler), meetingPoint).wzxy;
}

// Such numbers from arithmetic, which takes a software driver a quarter of the time of a look-up; other ones for each
// salt. Rounds of folding the high bits down and multiplying by a large odd number, after Chris Wellons, "Prospecting
// for Hash Functions" (2018), whose numbers they are; those per cell are primes of Yann Collet's xxHash. With a round
// less the lattice shows as straight threads.
vec4 hashedNumbers(vec2 cell, int salt) {
    const uvec2 perCell = uvec2(0x27d4eb2fu, 0x165667b1u);
    uvec2 near = uvec2(ivec2(cell)) * perCell;
    uvec2 far = near + perCell;
    uvec4 mixed = uvec4(near.x, far.x, near.x, far.x) ^ (uvec4(near.yy, far.yy) + uint(salt));
    mixed = (mixed ^ (mixed >> 15)) * 0x2c1b3c6du;
    mixed = (mixed ^ (mixed >> 12)) * 0x297a2d39u;
    mixed ^= mixed >> 15;
    return vec4(ivec4(mixed)) / 2147483648.0;
}

// A quarter of cos(pi v) and of sin(pi v) for v in [-1, 1], each as two parabolas. A random number thereby becomes a
// direction, without trigonometry.
vec4 latticeCosine(vec4 v) {
    vec4 x = 0.5 - abs(v);
    return x - x * abs(x);
}

vec4 latticeSine(vec4 v) {
    return v - v * abs(v);
}

// The quintic fade of Ken Perlin, "Improving Noise" (SIGGRAPH 2002): no step in slope or curvature between cells.
vec2 fade(vec2 t) {
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

vec2 fadeSlope(vec2 t) {
    vec2 s = t * (t - 1.0);
    return 30.0 * s * s;
}

// Interpolates between the four corners of a cell.
float betweenCorners(vec4 corners, vec2 weight) {
    vec2 row = mix(corners.xz, corners.yw, weight.x);
    return mix(row.x, row.y, weight.y);
}

// At a place in a cell, 0 to 1, with the numbers of its corners.
Noise gradientNoise(vec2 inCell, vec4 numbers) {
    vec2 fromFarCorner = inCell - 1.0;
    vec4 gradientX = latticeCosine(numbers);
    vec4 gradientY = latticeSine(numbers);

    // The height of each corner's own slanted plane at this position.
    vec4 planes = gradientX * vec4(inCell.x, fromFarCorner.x, inCell.x, fromFarCorner.x) +
                  gradientY * vec4(inCell.y, inCell.y, fromFarCorner.y, fromFarCorner.y);

    vec2 weight = fade(inCell);
    vec2 rows = mix(planes.xz, planes.yw, weight.x);
    vec2 acrossX = planes.yw - planes.xz;

    // Product rule: the planes' slopes, weighted, plus the weights' slopes times what they blend.
    vec2 planeSlope = vec2(betweenCorners(gradientX, weight), betweenCorners(gradientY, weight));
    vec2 blendSlope = fadeSlope(inCell) * vec2(mix(acrossX.x, acrossX.y, weight.y), rows.y - rows.x);

    return Noise(noiseGain * mix(rows.x, rows.y, weight.y), noiseGain * (planeSlope + blendSlope));
}

// `position` in cells.
Noise noiseOfTexture(vec2 position) {
    vec2 cell = floor(position);
    return gradientNoise(position - cell, textureNumbers(cell));
}

Noise noiseOfHash(vec2 position, int salt) {
    vec2 cell = floor(position);
    return gradientNoise(position - cell, hashedNumbers(cell, salt));
}

// An eighth of a turn, and back.
vec2 turned(vec2 v) {
    return 0.70711 * vec2(v.x - v.y, v.x + v.y);
}

vec2 turnedBack(vec2 v) {
    return 0.70711 * vec2(v.x + v.y, v.y - v.x);
}

Noise turnedBack(Noise noise) {
    return Noise(noise.value, turnedBack(noise.slope));
}
