// Gives the page the FaceLandmarker of MediaPipe.

import { FaceLandmarker } from "@mediapipe/tasks-vision";

window.FaceLandmarker = FaceLandmarker;
