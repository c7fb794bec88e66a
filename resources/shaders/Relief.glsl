// How the clouds catch the light, which stands at the upper left of the screen. Both passes light the same relief: the
// colour pass with the slopes that it knows without looking at its neighbours, which costs next to nothing; the light pass
// with those of the height image as it is.

// Unit vector along which the light falls over the picture, y down as in the intermediate images.
const vec2 lightFallsDown = vec2(0.6, 0.8);

// The same with y up, as on the noise plane.
const vec2 lightFallsUp = vec2(0.6, -0.8);

// The height's rise over the picture's height that counts as a slope of 1.
const float unitRise = 7.2;

// How much of the light falls in which pass.
const float lightInColorPass = 0.8;
const float lightInLightPass = 0.2;

// Holds x softly between -1 and 1. A hard clamp would leave plateaus with visible rims.
float softLimit(float x) {
    return x * inversesqrt(1.0 + x * x);
}

// Gentle slopes are lifted, steep ones held; heights catch more light than depths.
float reliefLight(float slope, float height) {
    float companded = slope / (0.94 + 0.77 * abs(slope));
    return companded * (0.3 + 1.2 * height);
}

// Blends softly: what is nearly black or white already changes least, so that hardly anything clips.
vec3 litColor(vec3 color, float light) {
    return color + light * (color - 0.9 * color * color);
}
