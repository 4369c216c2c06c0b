# Completion of skeigiot for bash. Made by script/build-manual from what the command says of itself.

_skeigiot_files()
{
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_skeigiot_words()
{
  mapfile -t COMPREPLY < <(compgen -W "$2" -- "$1")
}

_skeigiot()
{
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command="" i
  COMPREPLY=()

  # To bash an equals sign is a word of its own, and --color=never are three.
  if [[ $word == = ]]; then
    word=
  elif [[ $option == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      agree | replay | inspect | mapping | report | ros | serve | stream | study | types | watch | why | help)
        command=${COMP_WORDS[i]}
        break
        ;;
    esac
  done

  case "$command $option" in
    "agree --label" | "agree --unlabelled" | "agree --scale" | "agree --person" | "agree --tier" | "agree --labels-offset" | "agree --max-delay" | "agree --cycle" | "agree --fps" | "agree --look-at" | "agree --rest" | "agree --camera-height" | "agree --min-confidence" | "agree --au-full-scale" | "agree --person-from" | "agree --boundary-positive" | "agree --boundary-negative" | "agree --boundary-confidence" | "agree --boundary-looking-at-robot" | "agree --boundary-strictly-looking-at-robot" | "agree --boundary-excited")
      :
      return
      ;;
    "agree --labels" | "agree --offset" | "agree --csv" | "agree --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "agree --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "agree --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
    "agree --value")
      _skeigiot_words "$word" "valence attention"
      return
      ;;
    "replay --cycle" | "replay --jobs" | "replay --scope" | "replay --scopes-offset" | "replay --step" | "replay --fps" | "replay --look-at" | "replay --rest" | "replay --camera-height" | "replay --min-confidence" | "replay --au-full-scale" | "replay --person-from" | "replay --boundary-positive" | "replay --boundary-negative" | "replay --boundary-confidence" | "replay --boundary-looking-at-robot" | "replay --boundary-strictly-looking-at-robot" | "replay --boundary-excited")
      :
      return
      ;;
    "replay --offset" | "replay --scopes" | "replay --csv" | "replay --jsonl" | "replay --summary" | "replay --to-jsonl" | "replay --eaf" | "replay --audacity" | "replay --beside" | "replay --report" | "replay --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "replay --color")
      _skeigiot_words "$word" "auto always never"
      return
      ;;
    "replay --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "replay --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
    "inspect --fps" | "inspect --look-at" | "inspect --rest" | "inspect --camera-height" | "inspect --min-confidence" | "inspect --au-full-scale" | "inspect --person-from")
      :
      return
      ;;
    "inspect --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "inspect --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "inspect --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
    "report --scope" | "report --scopes-offset" | "report --cycle" | "report --video-offset" | "report --label" | "report --unlabelled" | "report --scale" | "report --person" | "report --tier" | "report --labels-offset" | "report --fps" | "report --look-at" | "report --rest" | "report --camera-height" | "report --min-confidence" | "report --au-full-scale" | "report --person-from" | "report --boundary-positive" | "report --boundary-negative" | "report --boundary-confidence" | "report --boundary-looking-at-robot" | "report --boundary-strictly-looking-at-robot" | "report --boundary-excited")
      :
      return
      ;;
    "report -o" | "report --output" | "report --offset" | "report --scopes" | "report --labels" | "report --video" | "report --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "report --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "report --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
    "report --value")
      _skeigiot_words "$word" "valence attention"
      return
      ;;
    "ros --domain" | "ros --range" | "ros --peer" | "ros --rosbridge" | "ros --hold" | "ros --silence" | "ros --head-joints" | "ros --head-base" | "ros --listen" | "ros --cycle" | "ros --look-at" | "ros --rest" | "ros --camera-height" | "ros --min-confidence" | "ros --au-full-scale" | "ros --boundary-positive" | "ros --boundary-negative" | "ros --boundary-confidence" | "ros --boundary-looking-at-robot" | "ros --boundary-strictly-looking-at-robot" | "ros --boundary-excited" | "ros -p" | "ros --param" | "ros -r" | "ros --remap")
      :
      return
      ;;
    "ros --record" | "ros --jsonl" | "ros --mapping" | "ros --params-file")
      _skeigiot_files "$word"
      return
      ;;
    "ros --times")
      _skeigiot_words "$word" "arrival source"
      return
      ;;
    "ros --ros-distro")
      _skeigiot_words "$word" "humble jazzy none"
      return
      ;;
    "serve --speed" | "serve --listen" | "serve --cycle" | "serve --fps" | "serve --look-at" | "serve --rest" | "serve --camera-height" | "serve --min-confidence" | "serve --au-full-scale" | "serve --person-from" | "serve --boundary-positive" | "serve --boundary-negative" | "serve --boundary-confidence" | "serve --boundary-looking-at-robot" | "serve --boundary-strictly-looking-at-robot" | "serve --boundary-excited")
      :
      return
      ;;
    "serve --video" | "serve --model" | "serve --offset" | "serve --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "serve --times")
      _skeigiot_words "$word" "arrival lines"
      return
      ;;
    "serve --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "serve --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
    "stream --cycle")
      :
      return
      ;;
    "stream --times")
      _skeigiot_words "$word" "arrival lines"
      return
      ;;
    "study --shard" | "study --jobs")
      :
      return
      ;;
    "study -o" | "study --output")
      _skeigiot_files "$word"
      return
      ;;
    "study --table")
      _skeigiot_words "$word" "sessions recordings persons summaries updates forces warnings notes factors options study"
      return
      ;;
    "watch --speed" | "watch --cycle" | "watch --fps" | "watch --look-at" | "watch --rest" | "watch --camera-height" | "watch --min-confidence" | "watch --au-full-scale" | "watch --person-from")
      :
      return
      ;;
    "watch --offset" | "watch --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "watch --times")
      _skeigiot_words "$word" "arrival lines"
      return
      ;;
    "watch --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "watch --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
    "why --person" | "why --at" | "why --from" | "why --to" | "why --cycle" | "why --fps" | "why --look-at" | "why --rest" | "why --camera-height" | "why --min-confidence" | "why --au-full-scale" | "why --person-from")
      :
      return
      ;;
    "why --offset" | "why --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "why --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "why --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface libreface tidy mediapipe whisper xdf rosbag2 jsonl"
      return
      ;;
  esac

  case $command in
    "")
      _skeigiot_words "$word" "agree replay inspect mapping report ros serve stream study types watch why help --help --version -h"
      ((${#COMPREPLY[@]})) || _skeigiot_files "$word"  # a recording
      ;;
    agree)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --csv --cycle --force --format --fps --frame --help --json --label --labels --labels-offset --look-at --mapping --max-delay --min-confidence --mirrored --offset --person --person-from --rest --scale --skip-bad --tier --unlabelled --value -h"
      fi
      ;;
    replay)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --audacity --beside --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --color --csv --cycle --eaf --explain --force --format --fps --frame --help --jobs --jsonl --look-at --mapping --min-confidence --mirrored --offset --person-from --quiet --report --rest --scope --scopes --scopes-offset --separately --skip-bad --step --summary --to-jsonl -h -q"
      fi
      ;;
    inspect)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --camera-height --columns --format --fps --frame --help --json --look-at --mapping --min-confidence --mirrored --person-from --rest --skip-bad -h"
      fi
      ;;
    mapping)
      _skeigiot_words "$word" "--help -h"
      ;;
    report)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --cycle --force --format --fps --frame --help --label --labels --labels-offset --look-at --mapping --min-confidence --mirrored --offset --output --person --person-from --rest --scale --scope --scopes --scopes-offset --skip-bad --tier --unlabelled --value --video --video-offset -h -o"
      fi
      ;;
    ros)
      _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --cycle --domain --force --head-base --head-joints --help --hold --jsonl --listen --look-at --mapping --min-confidence --mirrored --no-open --param --params-file --peer --range --record --remap --rest --ros-args --ros-distro --rosbridge --serve --silence --times --use-sim-time --watch -h -p -r"
      ;;
    serve)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera --camera-height --cycle --format --fps --frame --help --listen --look-at --mapping --min-confidence --mirrored --model --no-open --offset --person-from --rest --skip-bad --speed --times --video -h"
      fi
      ;;
    stream)
      _skeigiot_words "$word" "--cycle --help --times -h"
      ;;
    study)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W "init check run export report" -- "$word")
      else
        _skeigiot_words "$word" "init check run export report --anew --force --help --jobs --output --quiet --shard --table -h -o -q"
      fi
      ;;
    types)
      _skeigiot_words "$word" "--help --json -h"
      ;;
    watch)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --camera-height --cycle --format --fps --frame --help --look-at --mapping --min-confidence --mirrored --offset --person-from --rest --skip-bad --speed --times -h"
      fi
      ;;
    why)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--all --at --au-full-scale --camera-height --cycle --format --fps --frame --from --help --json --look-at --mapping --min-confidence --mirrored --offset --person --person-from --rest --skip-bad --to -h"
      fi
      ;;
    help)
      _skeigiot_words "$word" "agree replay inspect mapping report ros serve stream study types watch why help --help -h"
      ;;
  esac
}

complete -F _skeigiot skeigiot
