// Where the light stands, for both passes: at the upper left of the screen.

// Unit vector along which the light falls over the picture, y down as in the intermediate images.
const vec2 lightFallsDown = vec2(0.6, 0.8);

// The same with y up, as on the noise plane.
const vec2 lightFallsUp = vec2(0.6, -0.8);

// Holds x softly between -1 and 1. A hard clamp would leave plateaus with visible rims.
float softLimit(float x) {
    return x * inversesqrt(1.0 + x * x);
}
