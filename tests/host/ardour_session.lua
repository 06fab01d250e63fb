-- SPDX-License-Identifier: AGPL-3.0-or-later
--
-- Run by ardour_session.sh in Ardour's Lua tool.
--
--   make FOLDER FORMAT ID SECONDS    a session with a recorded track that Velkor sits on, saved
--   song FOLDER FORMAT ID SECONDS    the same without automation, in a song whose tempo and meter change
--   reload FOLDER                    opens it, looks whether all is there, saves it again

io.stdout:setvbuf ("no")
local task, folder = arg[1], arg[2]
local rate = 48000

local backend = AudioEngine:set_backend ("None (Dummy)", "", "")
assert (not backend:isnil(), "no dummy backend")
backend:set_device_name ("Silence")
assert (AudioEngine:start (false) == 0, "the engine does not start")

local function wait_until (seconds, isReached)
    for _ = 1, 20 * seconds do
        if isReached() then break end
        ARDOUR.LuaAPI.usleep (50000)
    end
end

-- Takes silence, in real time: it gives the track a region of that length.
local function record (session, track, seconds)
    for i = 0, 1 do
        track:input():nth (i):connect ("system:capture_" .. (i + 1))
    end

    track:rec_enable_control():set_value (1, PBD.GroupControlDisposition.NoGroup)
    session:maybe_enable_record()
    session:goto_start (false)
    session:request_roll (ARDOUR.TransportRequestSource.TRS_UI)

    wait_until (5 * seconds, function() return session:transport_sample() >= seconds * rate end)
    session:request_stop (false, false, ARDOUR.TransportRequestSource.TRS_UI)
    wait_until (5, function() return session:transport_stopped() end)
    ARDOUR.LuaAPI.usleep (500000)    -- the disk's thread still writes
    track:rec_enable_control():set_value (0, PBD.GroupControlDisposition.NoGroup)
    session:disable_record (false, true)
end

-- points: { seconds, value } with the value as the host keeps it.
local function automate (processor, parameter, points)
    local list, curve = ARDOUR.LuaAPI.plugin_automation (processor, parameter)
    assert (not list:isnil(), "parameter " .. parameter .. " can't be automated")

    for _, point in ipairs (points) do
        curve:add (Temporal.timepos_t (math.floor (point[1] * rate)), point[2], false, true)
    end

    local which = Evoral.Parameter (ARDOUR.AutomationType.PluginAutomation, 0, parameter)
    processor:to_automatable():automation_control (which, false):set_automation_state (ARDOUR.AutoState.Play)
end

-- The plug-in's parameters by name.
local function parameters (processor)
    local plugin = processor:to_plugininsert():plugin (0)
    local result = {}

    for i = 0, plugin:parameter_count() - 1 do
        local _, out = plugin:get_parameter_descriptor (i, ARDOUR.ParameterDescriptor())
        result[out[2].label] = i
    end

    return result
end

-- 4/4 with the tempo changing at its second bar, 7/8 from 1.8 s on and 3/4 from 2.5 s on.
local function change_tempo_and_meter()
    local map = Temporal.TempoMap.write_copy()
    local function at (seconds) return Temporal.timepos_t (math.floor (seconds * rate)) end
    map:set_tempo (Temporal.Tempo (240, 240, 4), at (0))
    map:set_tempo (Temporal.Tempo (300, 300, 4), at (1))
    map:set_meter (Temporal.Meter (7, 8), at (1.8))
    map:set_meter (Temporal.Meter (3, 4), at (2.5))
    Temporal.TempoMap.update (map)
end

local function make (format, id, seconds, is_song)
    os.execute ("rm -rf '" .. folder .. "'")    -- of an attempt that broke off
    local session = create_session (folder, "session", rate)
    assert (session, "no session")
    local tracks = session:new_audio_track (2, 2, nil, 1, "Guitar", ARDOUR.PresentationInfo.max_order,
        ARDOUR.TrackMode.Normal, true)
    local track = tracks:front()
    record (session, track, seconds)

    local processor = ARDOUR.LuaAPI.new_plugin (session, id, ARDOUR.PluginType[format], "")
    assert (not processor:isnil(), "Ardour finds no " .. format)
    assert (track:add_processor_by_index (processor, 0, nil, true) == 0, "Ardour takes no " .. format)

    -- An LV2's parameters are properties, which Lua can't reach: the caller writes them into the session's file.
    if is_song then
        change_tempo_and_meter()
    elseif format == "VST3" then
        local numbers = parameters (processor)
        assert (ARDOUR.LuaAPI.set_processor_param (processor, numbers["Delay 1 Sync"], 1), "it can't be set")
        automate (processor, numbers["Delay 1 Time"], { { 0, 0.57 }, { 1.7, 0.57 }, { 1.701, 0.37 } })
        automate (processor, numbers["Kill"], { { 0, 0 }, { 2.9, 0 }, { 2.901, 1 } })
    end

    assert (session:save_state ("") == 0, "the session can't be saved")
end

local function reload()
    local session = load_session (folder, "session")
    assert (session, "no session")
    local processor = session:route_by_name ("Guitar"):nth_plugin (0)
    assert (not processor:isnil(), "the plug-in is gone")
    assert (session:save_state ("") == 0, "the session can't be saved")
end

if task == "reload" then reload() else make (arg[3], arg[4], tonumber (arg[5]), task == "song") end

close_session()
print ("done")
quit()
